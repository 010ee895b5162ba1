#include <algorithm>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

/// The grid of a transform at Fs', from 0 Hz up or centred on it; for spectra as input the size of the frame gives it,
/// which counts the non-negative frequencies alone unless the grid is centred.
void SpectrumEstimator::computeFrequencyVector() {
    if (!autoFrequencyVector) {
        return;
    }
    const std::size_t N = actualFFTLength;
    const bool countsOneSide = isFrequencyInputDomain() && !isTwoSidedSpectrum();
    const std::size_t M = countsOneSide ? std::max<std::size_t>(N % 2 == 1 ? 2 * N - 2 : 2 * N - 1, 1) : N;
    const double step = actualSampleRate / static_cast<double>(M);
    const double nyquist = actualSampleRate / 2.0;
    const bool even = M % 2 == 0;
    const std::size_t middle = even ? M / 2 : (M + 1) / 2;

    std::vector<double> f(M);
    for (std::size_t i = 0; i < M; ++i) {
        f[i] = static_cast<double>(i) * step;
    }
    if (even) {
        f[middle] = nyquist;
    } else {
        f[middle - 1] = nyquist - step / 2.0;
        if (middle < M) {
            f[middle] = nyquist + step / 2.0;
        }
    }
    f[M - 1] = actualSampleRate - step;

    frequencyVector.clear();
    if (isTwoSidedSpectrum()) {
        for (std::size_t i = middle; i-- > 1;) {
            frequencyVector.push_back(-f[i]);
        }
    }
    const std::size_t upTo = getFrequencyVectorSize() - frequencyVector.size();
    frequencyVector.insert(frequencyVector.end(), f.begin(),
                           f.begin() + static_cast<std::ptrdiff_t>(std::min(upTo, M)));
}

void SpectrumEstimator::computeDeltaFrequency() {
    deltaFrequency = actualSampleRate / static_cast<double>(actualFFTLength);
    linearFrequencyVector = true;
    if (!isFrequencyInputDomain() || autoFrequencyVector || frequencyVector.size() < 2) {
        return;
    }
    const double firstStep = frequencyVector[1] - frequencyVector[0];
    deltaFrequency = firstStep;
    for (std::size_t i = 2; i < frequencyVector.size(); ++i) {
        const double step = frequencyVector[i] - frequencyVector[i - 1];
        deltaFrequency = std::min(deltaFrequency, step);
        linearFrequencyVector = linearFrequencyVector && step == firstStep;
    }
}

/// `count` values of the grid from the start of the range on. A grid that ends before is continued by its last step.
void SpectrumEstimator::copyFrequencyVector(double* to, std::size_t count) const {
    const std::size_t start = std::min(frequencyRangeStart(), frequencyVector.size());
    const std::size_t held = std::min(count, frequencyVector.size() - start);
    std::copy_n(frequencyVector.begin() + static_cast<std::ptrdiff_t>(start), held, to);
    if (held == count) {
        return;
    }
    const std::size_t size = frequencyVector.size();
    const double step = size >= 2 ? frequencyVector[size - 1] - frequencyVector[size - 2] : deltaFrequency;
    const double last = size >= 1 ? frequencyVector[size - 1] : -step;
    for (std::size_t i = held; i < count; ++i) {
        to[i] = last + static_cast<double>(i - held + 1) * step;
    }
}

void SpectrumEstimator::addFrequencyVectorToOutputBuffer(std::vector<double>& out) const {
    if (outputFrequencyVector != 0) {
        copyFrequencyVector(out.data(), spectrumLength);
    }
}

std::size_t SpectrumEstimator::getFrequencyVectorSize() const {
    return isFrequencyInputDomain() || isTwoSidedSpectrum() ? actualFFTLength : oneSidedLength();
}

double SpectrumEstimator::getSpan() const {
    return isFrequencySpanSpanAndCenterFrequency() ? spanProperty : stopFrequency - startFrequency;
}

double SpectrumEstimator::getCenterFrequency() const {
    return isFrequencySpanSpanAndCenterFrequency() ? centerFrequency : (stopFrequency + startFrequency) * 0.5;
}

double SpectrumEstimator::getStartFrequency() const {
    return isFrequencySpanStartAndStopFrequencies() ? startFrequency : centerFrequency - spanProperty * 0.5;
}

double SpectrumEstimator::getStopFrequency() const {
    return isFrequencySpanStartAndStopFrequencies() ? stopFrequency : centerFrequency + spanProperty * 0.5;
}

bool SpectrumEstimator::isValidSampleRate(const double& rate) const {
    if (autoRBW) {
        return isFrequencyResolutionMethodRBW() || isFrequencyInputDomain();
    }
    if (isFrequencyInputDomain()) {
        return true;
    }
    double width = isTwoSidedSpectrum() ? rate : rate * 0.5;
    if (isFrequencySpanStartAndStopFrequencies()) {
        width = stopFrequency - startFrequency;
    }
    return isFrequencyResolutionMethodRBW() && width / rbw >= 2.0;
}

}  // namespace dspwavedecks
