#include "BFFrequencyDataStrategy.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "BFInputPortParametersHandlerFilter.h"
#include "SpectrumEstimatorFilter.h"
#include "TruncateTo.h"

namespace dspwavedecks {

namespace {

int divideUp(int dividend, int divisor) {
    return dividend / divisor + (dividend % divisor != 0 ? 1 : 0);
}

/// Sum of the first values of a buffer, each without its fraction; 0 if one is negative or the sum is above `most`.
std::size_t countSpectra(const std::vector<double>& buffer, std::size_t slots, std::size_t most) {
    std::size_t spectra = 0;
    for (std::size_t slot = 0; slot < slots; ++slot) {
        const int count = truncateTo<int>(buffer[slot]);
        spectra += static_cast<std::size_t>(std::max(count, 0));
        if (count < 0 || spectra > most) {
            return 0;
        }
    }
    return spectra;
}

}  // namespace

BFFrequencyDataStrategy::BFFrequencyDataStrategy() = default;

BFFrequencyDataStrategy::~BFFrequencyDataStrategy() = default;

bool BFFrequencyDataStrategy::isChannelDataValid(const Buffers& data, int signal) const {
    return isStretchInBuffer(data, signal) && dataEndIdx >= numPointsPerChannel;
}

int BFFrequencyDataStrategy::getNumDataSignals() {
    if (!wavedeck::WaveDeckClientRegistry::sInstance.isClientValid(clientID)) {
        return 0;
    }
    using Ports = BFInputPortParametersHandlerFilter;
    return numSignals - (Ports::isFrequencyVectorSourceInputPort(clientID) ? 1 : 0) -
           (Ports::isRBWSourceInputPort(clientID) ? 1 : 0) - (Ports::isVBWSourceInputPort(clientID) ? 1 : 0);
}

void BFFrequencyDataStrategy::packageFrequencyPocoArray(const Buffers&, int, ArrayPointer& frequencyArray) {
    const std::vector<double> frequencies = SpectrumEstimatorFilter::getFrequencyVector(clientID);
    frequencyArray = packageFrequencies(frequencies.data(), frequencies.size());
}

void BFFrequencyDataStrategy::packageInterpFrequencyPocoArray(const Buffers&, int, ArrayPointer& frequencyArray) {
    const std::vector<double> frequencies = SpectrumEstimatorFilter::getFrequencyVector(clientID);
    frequencyArray = packageFrequencies(frequencies.data(), frequencies.size());
    countInterpolationPoints(frequencies.data(), frequencies.size());
}

void BFFrequencyDataStrategy::forgetMetrics() {
    blockLength = 0;
    channelPadding = 0;
    spectrumPadding = 0;
    numPointsPerChannel = 0;
    pointsPerBlock = 0;
    numLinesInBuffer = 0;
}

void BFFrequencyDataStrategy::computeCurrentInputMetrics(const Buffers& data, int signal, int numChannels,
                                                         int framePoints) {
    forgetMetrics();
    const std::vector<double>& buffer = data[static_cast<std::size_t>(signal)];
    constexpr auto mostValues = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (numChannels <= 0 || framePoints <= 0 || spectrumLength <= 0 || buffer.size() > mostValues) {
        return;
    }
    const auto channels = static_cast<std::size_t>(numChannels);
    const std::size_t slots = buffer.size() / (1 + channels * static_cast<std::size_t>(framePoints));
    const std::size_t perChannel = (buffer.size() - slots) / channels;
    const std::size_t spectra = countSpectra(buffer, slots, perChannel / static_cast<std::size_t>(spectrumLength));
    if (spectra == 0) {
        return;
    }
    blockLength = static_cast<int>(slots);
    numPointsPerChannel = spectrumLength;
    numLinesInBuffer = static_cast<int>(spectra);
    pointsPerBlock = numPointsPerChannel * numLinesInBuffer;
    channelPadding = static_cast<int>(perChannel) - pointsPerBlock;
    spectrumPadding = channelPadding / numLinesInBuffer;
    if (showSpectrogram && !computeLineGaps(buffer, framePoints)) {
        forgetMetrics();
    }
}

bool BFFrequencyDataStrategy::computeLineGaps(const std::vector<double>& buffer, int framePoints) {
    const int spectra = numLinesInBuffer;
    const int slotsASpectrum = divideUp(numPointsPerChannel, framePoints);
    const auto countAt = [&](int slot) { return truncateTo<int>(buffer[static_cast<std::size_t>(slot)]); };
    lineGaps.assign(static_cast<std::size_t>(spectra), 0);
    if (framePoints <= numPointsPerChannel) {
        if (spectra - 1 > (blockLength - 1) / slotsASpectrum) {
            return false;
        }
        // Each spectrum has slots of its own: the one with the count is the last of its output, with the padding of all
        // of them behind it.
        for (int j = 0; j < spectra; ++j) {
            lineGaps[static_cast<std::size_t>(spectra - 1 - j)] = spectrumPadding * countAt(j * slotsASpectrum);
        }
    } else {
        // Slots hold several spectra, or parts of them: an output fills its own slots up.
        int newer = 0;
        for (int slot = blockLength - 1; slot >= 0; --slot) {
            const int count = countAt(slot);
            if (count != 0) {
                const int inLastSlot = numPointsPerChannel * count % framePoints;
                lineGaps[static_cast<std::size_t>(newer)] = inLastSlot == 0 ? 0 : framePoints - inLastSlot;
                newer += count;
            }
        }
    }
    std::partial_sum(lineGaps.begin(), lineGaps.end(), lineGaps.begin());
    return true;
}

/// A spectrum that is no longer than a slot begins the last slot; a longer one ends with it, but for the padding.
void BFFrequencyDataStrategy::computeSpectrumDataStartAndEndIdx(int channel, int framePoints) {
    if (numPointsPerChannel <= framePoints) {
        dataEndIdx =
            numPointsPerChannel + (blockLength - 1) * framePoints + blockLength + blockLength * channel * framePoints;
    } else {
        dataEndIdx = blockLength + blockLength * (framePoints + framePoints * channel) - spectrumPadding;
    }
    dataStartIdx = dataEndIdx - numPointsPerChannel;
}

void BFFrequencyDataStrategy::computeSpectrogramDataStartAndEndIdx(int channel, int line, int framePoints) {
    const int before = blockLength - numPointsPerChannel * (line + 1);
    if (numPointsPerChannel == framePoints) {
        dataStartIdx = before + pointsPerBlock * (1 + channel);
    } else {
        const int gap = lineGaps[static_cast<std::size_t>(line)];
        dataStartIdx = before + (channelPadding + pointsPerBlock) * (1 + channel) - gap;
    }
    dataEndIdx = dataStartIdx + numPointsPerChannel;
}

}  // namespace dspwavedecks
