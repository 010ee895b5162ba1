#include "TestSignalReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string_view>

#include "RandomNumbers.h"
#include "SignalDescription.h"

namespace program {
namespace {

constexpr std::array<SignalKey, 6> commonKeys{{
    {"rate", "48k", 1e-12, 1e300},
    {"channels", "1", 1.0, 1024.0},
    {"duration", "10", 0.0, std::numeric_limits<double>::infinity()},
    {"seed", "1", 0.0, 9007199254740992.0},
    {"noise", "0", 0.0, 1e300},
    {"dc", "0", -1e300, 1e300},
}};

/// The added noise takes random numbers apart from those of the signals.
constexpr std::uint64_t addedNoiseStream = 255;

}  // namespace

TestSignalReader::TestSignalReader(const std::string& text) {
    SignalDescription description(text);
    description.accept(commonKeys);
    static constexpr std::array<std::string_view, 2> yesOrNo{"false", "true"};
    facts_.name = "gen:" + text;
    facts_.format = "test signal";
    facts_.scale = "values as computed";
    facts_.isComplex = description.word("complex", yesOrNo) == "true";
    facts_.sampleRate = description.number("rate");
    facts_.channels = static_cast<int>(description.wholeNumber("channels"));
    noiseRms_ = description.number("noise");
    dc_ = description.number("dc");
    seed_ = static_cast<std::uint64_t>(description.wholeNumber("seed"));
    signal_ = makeTestSignal(description, {facts_.sampleRate, facts_.isComplex, facts_.channels, seed_});
    description.refuseUnknownKeys();

    end_ = std::numeric_limits<std::uint64_t>::max();
    if (const double samples = std::round(description.number("duration") * facts_.sampleRate); samples < 1e18) {
        end_ = static_cast<std::uint64_t>(samples);
        facts_.length = end_;
    }
}

std::size_t TestSignalReader::read(std::size_t points, std::vector<double>& frame) {
    const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(points, end_ - next_));
    const auto channels = static_cast<std::size_t>(facts_.channels);
    frame.assign(static_cast<std::size_t>(facts_.rows()) * n, dc_);
    if (facts_.isComplex) {
        std::fill(frame.begin() + static_cast<std::ptrdiff_t>(channels * n), frame.end(), 0.0);
    }
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::span<double> real(frame.data() + channel * n, n);
        const std::span<double> imaginary(frame.data() + (channels + channel) * n, facts_.isComplex ? n : 0);
        signal_(next_, static_cast<int>(channel), real, imaginary);
        if (noiseRms_ > 0.0) {
            const RandomNumbers numbers(seed_, (channel << 8U) + addedNoiseStream);
            const double rms = noiseRms_ * (facts_.isComplex ? std::sqrt(0.5) : 1.0);
            for (std::size_t i = 0; i < n; ++i) {
                const auto pair = numbers.gaussianPair(next_ + i);
                real[i] += rms * pair.real();
                if (facts_.isComplex) {
                    imaginary[i] += rms * pair.imag();
                }
            }
        }
    }
    next_ += n;
    return n;
}

bool TestSignalReader::seek(std::uint64_t sample) {
    next_ = std::min(sample, end_);
    return true;
}

}  // namespace program
