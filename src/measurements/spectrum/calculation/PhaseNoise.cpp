#include "PhaseNoise.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "FirstLargest.h"
#include "InterpolationAtLevel.h"
#include "SpectrumMeasurementsUtils.h"

namespace dspwavedecks {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace

void PhaseNoise::setNumSignals(const unsigned long& n) {
    if (n == numSignals) {
        return;
    }
    results.spotPhaseNoise.resize(n);
    results.frequencyOffset.resize(n);
    results.phaseNoise.resize(n);
    results.numPoints.resize(n);
    numChannels.resize(n);
    frameSize.resize(n);
    numSignals = n;  // when all that it counts is there
}

void PhaseNoise::setNumChannels(const unsigned long& signal, const unsigned long& n) {
    if (signal >= numSignals || numChannels[signal] == n) {
        return;
    }
    results.spotPhaseNoise[signal].resize(n);
    results.frequencyOffset[signal].resize(n);
    results.phaseNoise[signal].resize(n);
    results.numPoints[signal].resize(n);
    numChannels[signal] = n;
    results.totalNumChannels = std::accumulate(numChannels.begin(), numChannels.end(), 0ul);
}

void PhaseNoise::setFrameSize(const unsigned long& signal, const unsigned long& n) {
    if (signal < numSignals) {
        frameSize[signal] = n;
    }
}

const phaseNoiseStruct& PhaseNoise::computePhaseNoise(const unsigned long& signal, const double* freq,
                                                      const double* spectrum) {
    if (signal >= numSignals) {
        return results;
    }
    results.spotFrequencyOffset = phaseNoiseFrequencyOffset;
    SpectrumMeasurementsUtils::computeOneSidedFrequencyAndSpectrum(
        freq, spectrum, frameSize[signal], numChannels[signal], frequencies, psd, frequencyOffset);
    SpectrumMeasurementsUtils::computePSDFromSpectrum(psd, rbw, spectrumType, spectrumUnits);
    for (std::size_t channel = 0; channel < numChannels[signal]; ++channel) {
        measureChannel(signal, channel);
    }
    if (signal + 1 == numSignals) {
        completePass();
    }
    return results;
}

/// The first largest bin but the lowest; the last bin for a channel of fewer than two.
std::size_t PhaseNoise::findCarrier(std::size_t channel) const {
    const std::size_t n = frequencies.size();
    if (n < 2) {
        return n == 0 ? 0 : n - 1;
    }
    return 1 + firstLargest(psd.data() + channel * n + 1, n - 1);
}

void PhaseNoise::measureChannel(std::size_t signal, std::size_t channel) {
    if (phaseNoiseFrequencyOffset.empty()) {
        results.numPoints[signal][channel] = 0;
        return;
    }
    const std::size_t carrier = findCarrier(channel);
    if (carrier + 1 >= frequencies.size()) {
        return;
    }
    const double* grid = frequencies.data() + carrier;
    const double* density = psd.data() + channel * frequencies.size() + carrier;
    const std::size_t numBins = frequencies.size() - carrier - 1;  // above the carrier
    std::vector<double>& spots = results.spotPhaseNoise[signal][channel];
    std::vector<double>& offsets = results.frequencyOffset[signal][channel];
    std::vector<double>& levels = results.phaseNoise[signal][channel];
    spots.resize(phaseNoiseFrequencyOffset.size(), nan);
    offsets.resize(numBins, 0.0);
    levels.resize(numBins, 0.0);

    // One octave below the first spot offset to one octave above the last.
    const double lowest = phaseNoiseFrequencyOffset.front() / 2.0;
    const double highest = 2.0 * phaseNoiseFrequencyOffset.back();
    const double carrierFrequency = grid[0];
    const double* end = grid + 1 + numBins;
    const double* first =
        std::partition_point(grid + 1, end, [=](double frequency) { return frequency - carrierFrequency < lowest; });
    const double* last =
        std::partition_point(first, end, [=](double frequency) { return !(frequency - carrierFrequency > highest); });
    const auto numPoints = static_cast<std::size_t>(last - first);
    const double* densities = density + (first - grid);
    // A carrier in a bandwidth that is no number has no level to refer to.
    const double carrierLevel = std::isfinite(rbw) ? 10.0 * std::log10(rbw) + density[0] : nan;
    for (std::size_t i = 0; i < numPoints; ++i) {
        offsets[i] = first[i] - carrierFrequency;
        levels[i] = densities[i] - carrierLevel;
    }
    maxNumPoints = std::max<unsigned long>(maxNumPoints, numPoints);
    results.numPoints[signal][channel] = numPoints;
    for (std::size_t i = 0; i < spots.size(); ++i) {
        spots[i] = interpolateAtAscendingLevel(offsets.data(), levels.data(), numPoints, phaseNoiseFrequencyOffset[i]);
    }
    widenLimits(offsets, levels, numPoints);
}

/// NaN is passed over: every comparison with it is false.
void PhaseNoise::widenLimits(const std::vector<double>& offsets, const std::vector<double>& levels,
                             std::size_t numPoints) {
    if (numPoints == 0) {
        return;
    }
    frequencyOffsetLimits[0] = std::min(frequencyOffsetLimits[0], offsets[0]);
    frequencyOffsetLimits[1] = std::max(frequencyOffsetLimits[1], offsets[numPoints - 1]);
    // Lanes of their own, as one chain of comparisons would wait for each result.
    constexpr std::size_t numLanes = 4;
    double smallest[numLanes] = {infinity, infinity, infinity, infinity};
    double largest[numLanes] = {-infinity, -infinity, -infinity, -infinity};
    std::size_t i = 0;
    for (; i + numLanes <= numPoints; i += numLanes) {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            smallest[lane] = std::min(smallest[lane], levels[i + lane]);
            largest[lane] = std::max(largest[lane], levels[i + lane]);
        }
    }
    for (; i < numPoints; ++i) {
        smallest[0] = std::min(smallest[0], levels[i]);
        largest[0] = std::max(largest[0], levels[i]);
    }
    phaseNoiseLimits[0] = std::min(phaseNoiseLimits[0], *std::min_element(smallest, smallest + numLanes));
    phaseNoiseLimits[1] = std::max(phaseNoiseLimits[1], *std::max_element(largest, largest + numLanes));
}

void PhaseNoise::completePass() {
    results.numSpotFrequencyOffsets = phaseNoiseFrequencyOffset.size();
    results.isNewDataReady = true;
    results.frequencyOffsetLimits = frequencyOffsetLimits;
    results.phaseNoiseLimits = phaseNoiseLimits;
    results.maxNumPoints = maxNumPoints;
    frequencyOffsetLimits = {infinity, -infinity};
    phaseNoiseLimits = {infinity, -infinity};
    maxNumPoints = 0;
}

}  // namespace dspwavedecks
