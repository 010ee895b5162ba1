#include <algorithm>
#include <cmath>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

void SpectrumEstimator::allocateSpectrogramResources() {
    computeActualTimeResolution();
    if (!showSpectrogram) {
        return;
    }
    computeNumSegmentsPerBlock();
    computeTimeIncrement();
    computeActualTimeSpan();
}

void SpectrumEstimator::computeActualTimeResolution() {
    actualTimeResolution = autoTimeResolution ? 1.0 / transientRBW : timeResolution;
}

void SpectrumEstimator::computeNumSegmentsPerBlock() {
    numSegmentsPerBlock =
        autoTimeResolution ? 1
                           : std::max<std::size_t>(toCount(std::floor(actualTimeResolution / (1.0 / transientRBW))), 1);
}

void SpectrumEstimator::computeTimeIncrement() {
    const double unit = 1.0 / transientRBW;
    if (isFrequencyInputDomain()) {
        timeIncrement = unit;
        return;
    }
    blockFraction = std::abs(getTimeResolution() - unit * static_cast<double>(numSegmentsPerBlock)) / unit;
    const auto step = static_cast<double>(transientNumSamplesPerUpdate);
    timeIncrement = step * static_cast<double>(numSegmentsPerBlock) / sampleRate;
    if (!autoTimeResolution) {
        timeIncrement += blockFraction * step / sampleRate;
    }
}

void SpectrumEstimator::computeActualTimeSpan() {
    actualTimeSpan = autoTimeSpan ? timeIncrement * static_cast<double>(numSpectrogramLines) : timeSpan;
}

std::size_t SpectrumEstimator::getNumSpectrogramLines() const {
    return autoTimeSpan ? numSpectrogramLines : std::max<std::size_t>(toCount(std::ceil(timeSpan / timeIncrement)), 2);
}

double SpectrumEstimator::getTimeResolution() const {
    return autoTimeResolution ? actualTimeResolution : timeResolution;
}

/// Makes one line of each block of G segments: the sum of its rows, and of the carried row times the fraction of a
/// segment that the time resolution has over, divided by G + 1 also where that fraction is 0.
///
/// The layout is made for a spectrogram of one channel. With several, the lines take the last of as many places as the
/// grid and the channels have, and those that would lie beyond the end of the output are left out; what stands in
/// between are rows as they were. That is meant.
void SpectrumEstimator::aggregateSpectrum(std::vector<double>& out, const int& signal, const std::size_t& channels) {
    const std::size_t G = numSegmentsPerBlock;
    if (propertyChanged || !showSpectrogram || G < 2) {
        return;
    }
    const std::size_t S = spectrumLength;
    const std::size_t blocks = numSpectrumBlocks;
    const std::size_t before = getChannelBufferIdx(signal, 0);
    spectrogramCarry.resize(S * totalNumChannels);
    rowScratch.assign(S * blocks * channels, 0.0);
    for (std::size_t block = 0; block < blocks; ++block) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            double* line = rowScratch.data() + S * (block + channel * blocks);
            const double* carried = spectrogramCarry.data() + (before + channel) * S;
            for (std::size_t k = 0; k < S; ++k) {
                line[k] = carried[k] * blockFraction;
            }
            // The carried row is that of segment G - 1, for all blocks of an update, and is kept at the channel's
            // place within its signal though it is read at its place among all channels. Both are meant.
            std::copy_n(out.data() + getOutputDataIdx(channel, G - 1), S, spectrogramCarry.data() + channel * S);
            for (std::size_t segment = block * G; segment < (block + 1) * G; ++segment) {
                const double* row = out.data() + getOutputDataIdx(channel, segment);
                for (std::size_t k = 0; k < S; ++k) {
                    line[k] += row[k];
                }
            }
        }
    }
    for (double& value : rowScratch) {
        value /= static_cast<double>(G + 1);
    }
    out.resize(S * blocks * (channels + 1));
    const std::size_t place = S * blocks * channels;
    const std::size_t fitting = std::min(rowScratch.size(), out.size() - place);
    std::copy_n(rowScratch.begin(), fitting, out.begin() + static_cast<std::ptrdiff_t>(place));
}

}  // namespace dspwavedecks
