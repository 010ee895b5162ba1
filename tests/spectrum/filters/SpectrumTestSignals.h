#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace testsupport {

/// Samples of a sine of the given amplitude.
/// frequency  cycles a sample
inline std::vector<double> sine(std::size_t count, double amplitude, double frequency, std::size_t from = 0) {
    std::vector<double> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = amplitude * std::cos(2.0 * M_PI * frequency * static_cast<double>(from + i));
    }
    return samples;
}

/// Noise that is the same on every machine.
inline std::vector<double> noise(std::size_t count, std::uint64_t state = 1) {
    std::vector<double> samples(count);
    for (double& sample : samples) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        sample = static_cast<double>(state >> 11) * 0x1p-52 - 1.0;
    }
    return samples;
}

}  // namespace testsupport
