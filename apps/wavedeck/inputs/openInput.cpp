#include "openInput.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "EngineeringNumber.h"
#include "ExcerptReader.h"
#include "RawReader.h"
#include "SampleFormat.h"
#include "SoundFileReader.h"
#include "TableReader.h"
#include "TestSignalReader.h"
#include "UsageError.h"
#include "openSigmf.h"

namespace program {
namespace {

constexpr std::string_view generated = "gen:";
constexpr std::string_view tableFormat = "csv";

/// Whether the file has that extension, in letters of any size.
bool hasExtension(const std::string& path, std::string_view extension) {
    return path.size() > extension.size() &&
           std::equal(extension.rbegin(), extension.rend(), path.rbegin(), [](char lower, char c) {
               return c == lower || (c >= 'A' && c <= 'Z' && c - 'A' + 'a' == lower);
           });
}

enum class InputKind { TestSignal, Raw, Table, Sigmf, Sound };

InputKind kindOf(const std::string& input, const InputOptions& options) {
    if (input.starts_with(generated)) {
        return InputKind::TestSignal;
    }
    if (input == "-" || !options.format.empty()) {
        return options.format == tableFormat ? InputKind::Table : InputKind::Raw;
    }
    if (isSigmf(input)) {
        return InputKind::Sigmf;
    }
    if (hasExtension(input, ".csv") || hasExtension(input, ".tsv")) {
        return InputKind::Table;
    }
    return findSampleFormatOfFile(input) ? InputKind::Raw : InputKind::Sound;
}

/// The format that was asked for, or else that of the file's extension.
SampleFormat rawFormat(const std::string& input, const std::string& shown, const std::string& option) {
    if (option.empty()) {
        const auto byExtension = input == "-" ? std::nullopt : findSampleFormatOfFile(input);
        if (!byExtension) {
            throw UsageError(shown + ": raw samples need --format, one of " + std::string(sampleFormatNames()));
        }
        return *byExtension;
    }
    const auto format = findSampleFormat(option);
    if (!format) {
        throw UsageError("--format: `" + option + "` is none of " + std::string(sampleFormatNames()));
    }
    return *format;
}

std::unique_ptr<SignalReader> openRaw(const std::string& input, const InputOptions& options, double factor) {
    const std::string shown = input == "-" ? "standard input" : input;
    const auto format = rawFormat(input, shown, options.format);
    if (options.rate.empty()) {
        throw UsageError(shown + ": raw samples need --rate HZ" +
                         (options.format.empty() ? " (its extension says " + format.name + ')' : std::string()));
    }
    constexpr long long mostChannels = 1024;
    const long long channels = options.channels.empty() ? 1 : readWholeNumber("--channels", options.channels, 1);
    if (channels > mostChannels) {
        throw UsageError("--channels: " + options.channels + " is more than " + std::to_string(mostChannels));
    }
    SignalFacts facts;
    facts.sampleRate = readPositiveNumber("--rate", options.rate);
    facts.name = shown;
    facts.format = "raw samples, " + format.meaning();
    facts.scale = format.scale();
    if (factor != 1.0) {
        facts.scale += ", times " + formatQuantity(factor, "", 15);
    }
    facts.channels = static_cast<int>(channels);
    facts.isComplex = format.isComplex;
    RawRun run;
    run.factor = factor;
    return std::make_unique<RawReader>(std::make_unique<ByteSource>(input), format, std::move(facts), std::vector{run});
}

std::unique_ptr<SignalReader> openTable(const std::string& input, const InputOptions& options, double factor) {
    TableReader::Options table;
    if (!options.rate.empty()) {
        table.rate = readPositiveNumber("--rate", options.rate);
    }
    table.isIq = options.isIq;
    table.factor = factor;
    return std::make_unique<TableReader>(input, table);
}

std::unique_ptr<SignalReader> openWhole(const std::string& input, const InputOptions& options) {
    const double factor = options.scale.empty() ? 1.0 : readPositiveNumber("--scale", options.scale);
    switch (kindOf(input, options)) {
        case InputKind::TestSignal:
            return std::make_unique<TestSignalReader>(input.substr(generated.size()));
        case InputKind::Raw:
            return openRaw(input, options, factor);
        case InputKind::Table:
            return openTable(input, options, factor);
        case InputKind::Sigmf:
            return openSigmf(input, options, factor);
        case InputKind::Sound:
            break;
    }
    return std::make_unique<SoundFileReader>(input, factor, options.isIq);
}

double readCenterFrequency(const std::string& text) {
    const double center = readNumber("--center", text);
    if (!std::isfinite(center)) {
        throw UsageError("--center: " + text + " is not finite");
    }
    return center;
}

/// A duration or a place in time: not negative, finite unless it may be without end.
double readTime(const char* name, const std::string& text, bool mayBeEndless) {
    const double value = readNumber(name, text);
    if (!(value >= 0.0) || (value == std::numeric_limits<double>::infinity() && !mayBeEndless)) {
        throw UsageError(std::string(name) + ": " + text + " is not a time of at least 0 s");
    }
    return value;
}

}  // namespace

std::unique_ptr<SignalReader> openInput(const std::string& input, const InputOptions& options) {
    auto whole = openWhole(input, options);
    if (!options.center.empty() && kindOf(input, options) != InputKind::Sigmf) {
        whole->setCenterFrequency(readCenterFrequency(options.center));
    }
    if (options.seek.empty() && options.duration.empty() && !options.loop) {
        return whole;
    }
    const double seek = options.seek.empty() ? 0.0 : readTime("--seek", options.seek, false);
    const double duration = options.duration.empty() ? std::numeric_limits<double>::infinity()
                                                     : readTime("--duration", options.duration, true);
    return std::make_unique<ExcerptReader>(std::move(whole), seek, duration, options.loop);
}

void refuseInputOptions(const InputOptions& options, const std::string& why) {
    const std::pair<const char*, bool> given[] = {
        {"--format", !options.format.empty()},
        {"--channels", !options.channels.empty()},
        {"--scale", !options.scale.empty()},
        {"--center", !options.center.empty()},
        {"--iq", options.isIq},
        {"--seek", !options.seek.empty()},
        {"--loop", options.loop},
        {"--duration", !options.duration.empty()},
        {"--verify", options.verify},
    };
    for (const auto& [name, isGiven] : given) {
        if (isGiven) {
            throw UsageError(name + (": " + why));
        }
    }
}

void refuseIdleOptions(const std::vector<std::string>& inputs, const InputOptions& options) {
    if (std::count(inputs.begin(), inputs.end(), "-") > 1) {
        throw UsageError("standard input is given twice");
    }
    const auto any = [&](std::initializer_list<InputKind> kinds) {
        return std::any_of(inputs.begin(), inputs.end(), [&](const std::string& input) {
            return std::find(kinds.begin(), kinds.end(), kindOf(input, options)) != kinds.end();
        });
    };
    using enum InputKind;
    if (!any({Raw, Table}) && !options.format.empty()) {
        throw UsageError("--format: goes with raw samples and tables, and no input is a file or standard input");
    }
    if (!any({Raw, Table, Sigmf}) && !options.rate.empty()) {
        throw UsageError("--rate: goes with raw samples and tables; --format says of a file that it is one");
    }
    if (!any({Raw, Table, Sigmf, Sound}) && !options.scale.empty()) {
        throw UsageError("--scale: goes with files and standard input; test signals have amplitudes");
    }
    if (!any({Sigmf}) && options.verify) {
        throw UsageError("--verify: goes with SigMF recordings, which tell checksums");
    }
    if (!any({Raw}) && !options.channels.empty()) {
        throw UsageError("--channels: goes with raw samples, and no input is raw");
    }
    if (!any({TestSignal, Raw, Table, Sound}) && !options.center.empty()) {
        throw UsageError("--center: SigMF recordings tell their own centre frequencies");
    }
    if (!any({Sound, Table}) && options.isIq) {
        throw UsageError("--iq: goes with sound files and tables; raw samples have complex formats");
    }
}

}  // namespace program
