#pragma once

#include "SpectrumEstimatorFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace testsupport {

/// Samples of a sine of the given amplitude.
/// frequency  cycles a sample
inline Values sine(std::size_t count, double amplitude, double frequency, std::size_t from = 0) {
    Values samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = amplitude * std::cos(2.0 * M_PI * frequency * static_cast<double>(from + i));
    }
    return samples;
}

/// Noise that is the same on every machine.
inline Values noise(std::size_t count, std::uint64_t state = 1) {
    Values samples(count);
    for (double& sample : samples) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        sample = static_cast<double>(state >> 11) * 0x1p-52 - 1.0;
    }
    return samples;
}

/// The record on the client's board.
inline dspwavedecks::spectrumEstimatorMetaDataStruct record(const TestClient& client) {
    const auto* const stored = dspwavedecks::SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(client.name());
    return stored != nullptr ? *stored : dspwavedecks::spectrumEstimatorMetaDataStruct();
}

}  // namespace testsupport
