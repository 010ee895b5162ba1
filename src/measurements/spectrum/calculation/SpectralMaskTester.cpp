#include "SpectralMaskTester.h"

#include <algorithm>

#include "FirstLargest.h"
#include "LimitLine.h"
#include "SpectrumKernels.h"

namespace dspwavedecks {

bool SpectralMaskTester::isUpperMaskEnabled() const {
    return enabledMasks == EnabledMasks::upper || enabledMasks == EnabledMasks::upperAndLower;
}

bool SpectralMaskTester::isLowerMaskEnabled() const {
    return enabledMasks == EnabledMasks::lower || enabledMasks == EnabledMasks::upperAndLower;
}

void SpectralMaskTester::setup(const double* freq, const int& newNumSignals, const unsigned long& numPoints,
                               const std::vector<int>& newNumChannels, const std::vector<int>& newIsComplex) {
    numSignals = newNumSignals;
    numChannels = newNumChannels;
    isComplex = newIsComplex;
    const auto total = static_cast<std::size_t>(getTotalNumChannels());
    frequencies.resize(total);
    frequencyOffset.resize(total, 0.0);
    upperMaskOnGrid.resize(total);
    lowerMaskOnGrid.resize(total);
    for (std::size_t channel = 0; channel < total; ++channel) {
        interpolateMasks(freq, numPoints, channel);
    }
    locked = numPoints > 0;
}

bool SpectralMaskTester::isSetUpFor(const int& otherNumSignals, const std::vector<int>& otherNumChannels,
                                    const std::vector<int>& otherIsComplex) const {
    return locked && numSignals == otherNumSignals && numChannels == otherNumChannels && isComplex == otherIsComplex;
}

void SpectralMaskTester::interpolateMasks(const double* freq, std::size_t numPoints, std::size_t channel) {
    std::vector<double>& grid = frequencies[channel];
    grid.assign(freq, freq + numPoints);
    const double offset = offsetOf(channel);
    for (double& frequency : grid) {
        frequency += offset;
    }
    const auto interpolate = [&](const std::vector<double>& mask, std::vector<double>& onGrid) {
        const LimitLine line(mask, frequencyLimits, maskFrequencyOffset);
        onGrid.resize(numPoints);
        std::transform(grid.begin(), grid.end(), onGrid.begin(), [&line](double f) { return line.levelAt(f); });
    };
    if (isUpperMaskEnabled()) {
        interpolate(upperMask, upperMaskOnGrid[channel]);
    }
    if (isLowerMaskEnabled()) {
        interpolate(lowerMask, lowerMaskOnGrid[channel]);
    }
}

bool SpectralMaskTester::hasGrid(const double* freq, std::size_t numPoints, std::size_t channel) const {
    const std::vector<double>& grid = frequencies[channel];
    const double offset = offsetOf(channel);
    return grid.size() == numPoints &&
           (numPoints == 0 || (grid.front() == freq[0] + offset && grid.back() == freq[numPoints - 1] + offset));
}

/// A list that a tune has made shorter than the channels has none for the rest.
double SpectralMaskTester::offsetOf(std::size_t channel) const {
    return channel < frequencyOffset.size() ? frequencyOffset[channel] : 0.0;
}

const spectralMaskStruct* SpectralMaskTester::performMaskTest(const double* data, const int& signal,
                                                              const unsigned long& numPoints, const bool& isNewTest) {
    const double reference = findReference(data, signal, numPoints);
    bool passed = true;
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(getNumChannels(signal)); ++channel) {
        const std::size_t index = getChannelIdx(signal, channel);
        if (!hasGrid(data, numPoints, index)) {
            interpolateMasks(data, numPoints, index);
        }
        testChannel(data + numPoints * (channel + 1), numPoints, reference, index);
        passed = upperMaskPassing && lowerMaskPassing;
    }
    status.spectrumPeak = reference;
    if (signal == numSignals - 1) {
        countTest(passed, isNewTest);
    }
    status.isNewDataReady = true;
    return &status;
}

/// The peak counts for the selected signal alone; all others are compared with the fixed level, and are meant to be.
double SpectralMaskTester::findReference(const double* data, int signal, std::size_t numPoints) const {
    if (referenceLevel != ReferenceLevel::spectrumPeak || signal < 0 ||
        static_cast<unsigned long>(signal) != selectedSignal) {
        return customReferenceLevel;
    }
    if (selectedChannel >= static_cast<unsigned long>(getNumChannels(signal)) || numPoints == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double* bins = data + numPoints * (selectedChannel + 1);
    return bins[firstLargest(bins, numPoints)];
}

void SpectralMaskTester::testChannel(const double* bins, std::size_t numPoints, double reference, std::size_t channel) {
    const std::vector<double>& upper = upperMaskOnGrid[channel];
    const std::vector<double>& lower = lowerMaskOnGrid[channel];
    const SpectrumKernels& kernels = spectrumKernels();
    // Bins beyond a line count as outside of the mask.
    const bool failsUpper =
        isUpperMaskEnabled() && kernels.anyAbove(bins, upper.data(), reference, std::min(numPoints, upper.size()));
    const bool failsLower =
        isLowerMaskEnabled() && kernels.anyBelow(bins, lower.data(), reference, std::min(numPoints, lower.size()));
    upperMaskPassing = upperMaskPassing && !failsUpper;
    lowerMaskPassing = lowerMaskPassing && !failsLower;
    if (failsUpper || failsLower) {
        currentFailingChannels.push_back(channel);
    }
}

void SpectralMaskTester::countTest(bool passed, bool isNewTest) {
    status.upperMaskStatus = upperMaskPassing;
    status.lowerMaskStatus = lowerMaskPassing;
    const double lastPassed = status.numPassedTests > 0.0 && status.isCurrentlyPassing ? 1.0 : 0.0;
    status.currentStatus = passed ? "passing" : "failing";
    status.isCurrentlyPassing = passed;
    if (isNewTest) {
        status.numPassedTests += passed ? 1.0 : 0.0;
        status.numTotalTests += 1.0;
    } else {
        status.numPassedTests += (passed ? 1.0 : 0.0) - lastPassed;
        status.numTotalTests = std::max(status.numTotalTests, 1.0);
    }
    // A failure names both masks, whichever failed: settled so. The single names are left for the frame whose last
    // signal has no channels, which passes by itself after another signal failed.
    if (!passed) {
        status.failingMasks = "Upper and lower";
    } else if (!upperMaskPassing) {
        status.failingMasks = "Upper";
    } else if (!lowerMaskPassing) {
        status.failingMasks = "Lower";
    } else {
        status.failingMasks.clear();
    }
    status.successRate = status.numPassedTests / status.numTotalTests * 100.0;
    status.failingChannels = currentFailingChannels;
    currentFailingChannels.clear();
    upperMaskPassing = true;
    lowerMaskPassing = true;
}

int SpectralMaskTester::getNumChannels(const int& signal) const {
    if (signal < 0 || signal >= numSignals || static_cast<std::size_t>(signal) >= numChannels.size()) {
        return 0;
    }
    const auto s = static_cast<std::size_t>(signal);
    const bool isHalved = s < isComplex.size() && isComplex[s] != 0;
    return std::max(0, isHalved ? numChannels[s] / 2 : numChannels[s]);
}

int SpectralMaskTester::getTotalNumChannels() const {
    return static_cast<int>(getChannelIdx(numSignals, 0));
}

unsigned long SpectralMaskTester::getChannelIdx(const int& signal, const unsigned long& channel) const {
    unsigned long index = channel;
    for (int lower = 0; lower < signal; ++lower) {
        index += static_cast<unsigned long>(getNumChannels(lower));
    }
    return index;
}

void SpectralMaskTester::reset() {
    const bool wasLocked = locked;
    release();
    locked = wasLocked;
    status = spectralMaskStruct();
}

void SpectralMaskTester::release() {
    locked = false;
    upperMaskPassing = true;
    lowerMaskPassing = true;
    currentFailingChannels.clear();
}

}  // namespace dspwavedecks
