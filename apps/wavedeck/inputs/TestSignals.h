#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "SignalDescription.h"

namespace program {

/// Writes one channel of a test signal: sample i of the spans is the value at index first + i. The imaginary span is
/// empty for a real signal.
using SignalFunction =
    std::function<void(std::uint64_t first, int channel, std::span<double> real, std::span<double> imaginary)>;

/// What a signal is made for.
struct SignalFrame {
    double sampleRate;  ///< Hz
    bool isComplex;
    int channels;
    std::uint64_t seed;
};

/// Names of all test signals.
std::vector<std::string_view> testSignalNames();

/// Makes the signal of a description. Throws UsageError for an unknown name, an unknown key, a value out of range,
/// and for a complex form where a signal has none.
SignalFunction makeTestSignal(SignalDescription& description, const SignalFrame& frame);

/// The makers by kind; each accepts its keys in the description.
/// Sinusoids are A cos(2 pi f t + phase) and A exp(j(2 pi f t + phase)); t is index / sample rate.
SignalFunction makeTone(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeTwoTone(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeMultitone(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeChirp(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeAmplitudeModulation(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeFrequencyModulation(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeNoise(SignalDescription& description, const SignalFrame& frame);
SignalFunction makePhaseNoise(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeSquare(SignalDescription& description, const SignalFrame& frame);
SignalFunction makePulse(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeRamp(SignalDescription& description, const SignalFrame& frame);
SignalFunction makeStep(SignalDescription& description, const SignalFrame& frame);

/// The fraction of a cycle, 0 to 1, that a frequency has gone through at an index: frac(frequency * index / rate). The
/// product is formed to twice the precision, so that the fraction stays exact to rounding after any number of samples.
inline double cycleFraction(double frequency, std::uint64_t index, double rate) {
    const auto n = static_cast<double>(index);
    const double product = frequency * n;
    const double lost = std::fma(frequency, n, -product);
    const double whole = std::floor(product / rate);
    const double fraction = (std::fma(-whole, rate, product) + lost) / rate;
    return fraction - std::floor(fraction);
}

}  // namespace program
