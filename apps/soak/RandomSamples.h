#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "ClientFacts.h"
#include "RandomNumbers.h"

namespace soak {

/// Fills values with one of several waveforms, now and then with values that no arithmetic likes.
void fillSamples(RandomNumbers& random, std::span<double> values);

/// A buffer a signal: each channel the same random number of samples, the channels as told.
std::vector<std::vector<double>> randomFrame(RandomNumbers& random, const std::vector<int>& channels);

/// Buffers of any length.
std::vector<std::vector<double>> randomBuffers(RandomNumbers& random, std::size_t signals);

}  // namespace soak
