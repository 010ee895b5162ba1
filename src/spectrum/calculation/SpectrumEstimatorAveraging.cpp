#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "SpectrumEstimator.h"
#include "VectorMath.h"

namespace dspwavedecks {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A trace that is off holds nothing, so that it begins anew when it comes on again.
void sizeTrace(std::vector<double>& trace, bool on, std::size_t size, double empty) {
    if (on) {
        trace.resize(size, empty);
    } else {
        trace.clear();
    }
}

}  // namespace

double SpectrumEstimator::vbw2ForgettingFactor(const double& bandwidth) const {
    const double t = 2.0 * pi * (bandwidth * enbw / transientRBW);
    return 1.0 - t / (t + 1.0);
}

double SpectrumEstimator::forgettingFactor2VBW(const double& ff) const {
    if (ff == 0.0) {
        return actualSampleRate * 0.5;
    }
    return (1.0 - ff) * transientRBW / (pi * (ff * enbw + ff * enbw));
}

double SpectrumEstimator::spectralAverages2ForgettingFactor(const std::size_t& n) {
    return -2.0 / static_cast<double>(n + 1) + 1.0;
}

double SpectrumEstimator::spectralAverages2VBW(const std::size_t& n) const {
    return forgettingFactor2VBW(spectralAverages2ForgettingFactor(n));
}

std::size_t SpectrumEstimator::forgettingFactor2SpectralAverages(const double& ff) const {
    // Rounding counts here: a factor of 0.9 is 20 averages, not 19.
    return ff == 1.0 ? 100 : toCount(std::ceil(2.0 / (1.0 - ff) - 1.0));
}

std::size_t SpectrumEstimator::vbw2SpectralAverages(const double& bandwidth) const {
    return forgettingFactor2SpectralAverages(vbw2ForgettingFactor(bandwidth));
}

void SpectrumEstimator::computeActualForgettingFactor() {
    if (isVBWAveraging()) {
        actualForgettingFactor = vbw2ForgettingFactor(actualVBW);
    } else if (isRunningAveraging()) {
        actualForgettingFactor = spectralAverages2ForgettingFactor(spectralAverages);
    } else {
        actualForgettingFactor = forgettingFactor;
    }
}

void SpectrumEstimator::computeActualVBW() {
    if (isRunningAveraging()) {
        actualVBW = spectralAverages2VBW(spectralAverages);
    } else if (isExponentialAveraging()) {
        actualVBW = forgettingFactor2VBW(forgettingFactor);
    } else if (autoVBW) {
        // The bandwidth of a factor of 0.9, with 1 - 0.9 as double arithmetic gives it.
        actualVBW = transientRBW * 0.09999999999999998 / (pi * 2.0 * 0.9 * enbw);
    } else {
        actualVBW = vbw;
    }
}

void SpectrumEstimator::computeActualSpectralAverages() {
    if (isRunningAveraging()) {
        actualSpectralAverages = spectralAverages;
    } else if (isVBWAveraging()) {
        actualSpectralAverages = vbw2SpectralAverages(actualVBW);
    } else {
        actualSpectralAverages = forgettingFactor2SpectralAverages(actualForgettingFactor);
    }
}

bool SpectrumEstimator::isAveragingDisallowed() const {
    if (actualForgettingFactor == 0.0) {
        return true;
    }
    if (allowTransientAveraging) {
        return false;
    }
    // Without averaging during the start, a Welch spectrum is never averaged. That is meant: the option is the bank's.
    return isFrequencyInputDomain() || !isFilterbankMode() ||
           totalNumSamplesProcessed < actualSegmentLength + 2 * firGroupDelay;
}

void SpectrumEstimator::allocateAveragingResources() {
    averagedSpectrum.resize(spectrumLength * totalNumChannels);
    averagingWeights.resize(static_cast<std::size_t>(std::max(numSignals, 0)));
    computeActualVBW();
    computeActualForgettingFactor();
    computeActualSpectralAverages();
    if (resetAveragingStates && !isLocked_) {
        resetAveragingResources(true);
    }
}

void SpectrumEstimator::resetAveragingResources(const bool& force) {
    if (!force && (!resetAveragingStates || isLocked_)) {
        return;
    }
    std::fill(averagedSpectrum.begin(), averagedSpectrum.end(), 0.0);
    std::fill(averagingWeights.begin(), averagingWeights.end(), 0.0);
}

/// The weight of the newest row is 1 / (1 + ff + ff^2 + ...) over the rows so far, so that the average is right from
/// the first row on and needs no correction.
double SpectrumEstimator::nextAverageWeight(const int& signal) {
    double& weight = averagingWeights[static_cast<std::size_t>(signal)];
    weight = actualForgettingFactor * weight + 1.0;
    return 1.0 / weight;
}

void SpectrumEstimator::computeExponentialAverage(std::vector<double>& out, const SegmentPart& part) {
    double* average = averagedSpectrum.data() + getChannelBufferIdx(part.signal, part.first) * spectrumLength;
    for (std::size_t channel = part.first; channel < part.end; ++channel, average += spectrumLength) {
        double* row = out.data() + getOutputDataIdx(channel, part.segment);
        if (vectormath::averageExponentially(row, average, spectrumLength, part.averageWeight,
                                             useNaNsInCalculatingAverages)) {
            dataHasNaNs = true;
        }
    }
}

/// Where all segments write one row and the whole band is shown, the row that an average leaves is the average itself:
/// it need not be written with every segment.
bool SpectrumEstimator::canAverageInPlace() const {
    return !showSpectrogram && !isFrequencyVectorTrimmed();
}

void SpectrumEstimator::computeAveragedPSD(const SegmentPart& part) {
    const std::size_t N = actualFFTLength;
    const double scale = getSpectrumScaleValue();
    const auto take = [&](const double* bins, double factor, double* average, std::size_t n) {
        if (vectormath::averagePower(bins, factor, average, n, part.averageWeight, useNaNsInCalculatingAverages)) {
            dataHasNaNs = true;
        }
    };
    double* average = averagedSpectrum.data() + getChannelBufferIdx(part.signal, part.first) * spectrumLength;
    for (std::size_t channel = part.first; channel < part.end; ++channel, average += spectrumLength) {
        const double* bins = transform.output(channel - part.first);
        if (isTwoSidedSpectrum()) {
            const std::size_t zeroHertz = (N - 1) / 2;
            take(bins, scale, average + zeroHertz, N - zeroHertz);
            take(bins + 2 * (N - zeroHertz), scale, average, zeroHertz);
            continue;
        }
        // All bins as pairs first, so that the rows stay aligned; the single ones then again from what they were.
        const std::size_t last = spectrumLength - 1;
        const double before[2] = {average[0], average[last]};
        take(bins, scale * 2.0, average, spectrumLength);
        average[0] = before[0];
        take(bins, scale, average, 1);
        if (last != 0 && isDCOrNyquist(last, N % 2 == 0)) {
            average[last] = before[1];
            take(bins + 2 * last, scale, average + last, 1);
        }
    }
}

void SpectrumEstimator::copyAverageToRows(std::vector<double>& out, const int& signal,
                                          const std::size_t& channels) const {
    const double* average = averagedSpectrum.data() + getChannelBufferIdx(signal, 0) * spectrumLength;
    std::copy_n(average, channels * spectrumLength, out.data() + getOutputDataIdx(0, 0));
}

void SpectrumEstimator::allocateMaxAndMinHoldResources() {
    const std::size_t size = spectrumLength * totalNumChannels;
    const bool time = !isFrequencyInputDomain();
    sizeTrace(metaData.maxHoldTrace, plotMaxHoldTrace, size, -infinity);
    sizeTrace(metaData.minHoldTrace, plotMinHoldTrace, size, infinity);
    sizeTrace(maxHoldPSD, plotMaxHoldTrace && time, size, -infinity);
    sizeTrace(minHoldPSD, plotMinHoldTrace && time, size, infinity);
    if (!isLocked_) {
        resetMaxAndMinHoldResources();
    }
}

void SpectrumEstimator::resetMaxAndMinHoldResources() {
    if (!resetMaxMinHoldStates) {
        return;
    }
    std::fill(metaData.maxHoldTrace.begin(), metaData.maxHoldTrace.end(), -infinity);
    std::fill(metaData.minHoldTrace.begin(), metaData.minHoldTrace.end(), infinity);
    std::fill(maxHoldPSD.begin(), maxHoldPSD.end(), -infinity);
    std::fill(minHoldPSD.begin(), minHoldPSD.end(), infinity);
    resetMaxMinHoldStates = false;
    ++numHoldResets;
}

void SpectrumEstimator::computeMaxAndMinHoldTracePSD(const std::vector<double>& out, const SegmentPart& part) {
    std::size_t place = getChannelBufferIdx(part.signal, part.first) * spectrumLength;
    for (std::size_t channel = part.first; channel < part.end; ++channel, place += spectrumLength) {
        const double* row =
            rowsAreInAverage ? averagedSpectrum.data() + place : out.data() + getOutputDataIdx(channel, part.segment);
        if (plotMaxHoldTrace) {
            vectormath::holdMaximum(row, maxHoldPSD.data() + place, spectrumLength);
        }
        if (plotMinHoldTrace) {
            vectormath::holdMinimum(row, minHoldPSD.data() + place, spectrumLength);
        }
    }
}

void SpectrumEstimator::computeMaxAndMinHoldTraceSpectrum(const std::vector<double>& out, const int& signal,
                                                          const std::size_t& channels) {
    std::size_t place = getChannelBufferIdx(signal, 0) * spectrumLength;
    for (std::size_t channel = 0; channel < channels; ++channel, place += spectrumLength) {
        const double* row = out.data() + getOutputDataIdx(channel, 0);
        if (plotMaxHoldTrace) {
            vectormath::holdMaximum(row, metaData.maxHoldTrace.data() + place, spectrumLength);
        }
        if (plotMinHoldTrace) {
            vectormath::holdMinimum(row, metaData.minHoldTrace.data() + place, spectrumLength);
        }
    }
}

}  // namespace dspwavedecks
