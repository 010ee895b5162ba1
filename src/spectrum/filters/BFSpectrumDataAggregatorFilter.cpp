#include "BFSpectrumDataAggregatorFilter.h"

#include <algorithm>
#include <cstddef>

#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

namespace {

std::size_t divideUp(std::size_t dividend, std::size_t divisor) {
    return (dividend + divisor - 1) / divisor;
}

}  // namespace

BFSpectrumDataAggregatorFilter::BFSpectrumDataAggregatorFilter() {
    registerUsualActions();
}

BFSpectrumDataAggregatorFilter::~BFSpectrumDataAggregatorFilter() = default;

void BFSpectrumDataAggregatorFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    if (data == nullptr || index >= frameSize.size() || frameSize[index] <= 0) {
        return;
    }
    const int rawChannels = std::max(getChannelCount(signal), 0);
    const auto channels = static_cast<std::size_t>(isComplexSignal(signal) ? rawChannels / 2 : rawChannels);
    const auto slot = static_cast<std::size_t>(frameSize[index]);
    const std::size_t rowLength = inputLength / (channels + 1);
    const std::size_t length = SpectrumEstimatorFilter::getSpectrumLength(clientID);  // 0 where the board has none
    const std::size_t spectra = length == 0 ? 0 : rowLength / length;
    if (spectra == 0 || spectra * length * (channels + 1) != inputLength) {
        return;
    }
    const std::size_t slots = length >= slot ? spectra * divideUp(length, slot) : divideUp(spectra * length, slot);
    const std::size_t outRow = slots * slot;
    out.clear();
    out.reserve(slots + outRow * channels);
    out.resize(slots);
    out[slots - divideUp(slots, spectra)] = static_cast<double>(spectra);
    for (std::size_t channel = 0; channel < channels; ++channel) {  // the frequencies ahead of them are dropped
        const double* const row = data + (channel + 1) * rowLength;
        out.insert(out.end(), row, row + rowLength);
        out.resize(slots + outRow * (channel + 1));
    }
    isDataReady = true;
}

}  // namespace dspwavedecks
