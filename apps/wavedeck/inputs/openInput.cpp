#include "openInput.h"

#include "EngineeringNumber.h"
#include "RawReader.h"
#include "SampleFormat.h"
#include "SoundFileReader.h"
#include "TestSignalReader.h"
#include "UsageError.h"

namespace program {
namespace {

std::unique_ptr<SignalReader> openRaw(const std::string& input, const InputOptions& options, double factor) {
    const std::string shown = input == "-" ? "standard input" : input;
    if (options.format.empty()) {
        throw UsageError(shown + ": raw samples need --format, one of " + std::string(sampleFormatNames()));
    }
    const SampleFormat* format = findSampleFormat(options.format);
    if (format == nullptr) {
        throw UsageError("--format: `" + options.format + "` is none of " + std::string(sampleFormatNames()));
    }
    if (options.rate.empty()) {
        throw UsageError(shown + ": raw samples need --rate HZ");
    }
    constexpr long long mostChannels = 1024;
    const long long channels = options.channels.empty() ? 1 : readWholeNumber("--channels", options.channels, 1);
    if (channels > mostChannels) {
        throw UsageError("--channels: " + options.channels + " is more than " + std::to_string(mostChannels));
    }
    return std::make_unique<RawReader>(input, *format, readPositiveNumber("--rate", options.rate),
                                       static_cast<int>(channels), factor);
}

}  // namespace

std::unique_ptr<SignalReader> openInput(const std::string& input, const InputOptions& options) {
    const double factor = options.scale.empty() ? 1.0 : readPositiveNumber("--scale", options.scale);
    constexpr std::string_view generated = "gen:";
    if (input.starts_with(generated)) {
        return std::make_unique<TestSignalReader>(input.substr(generated.size()));
    }
    if (input == "-" || !options.format.empty()) {
        return openRaw(input, options, factor);
    }
    return std::make_unique<SoundFileReader>(input, factor);
}

}  // namespace program
