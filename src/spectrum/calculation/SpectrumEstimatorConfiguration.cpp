#include <algorithm>
#include <cmath>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

/// A count that a formula gave: 0 for NaN and negative numbers, the longest segment for what is too large to count.
std::size_t SpectrumEstimator::toCount(double value) const {
    if (!(value >= 0.0)) {
        return 0;
    }
    constexpr double tooLarge = 0x1p63;
    return value < tooLarge ? static_cast<std::size_t>(value) : maximumSegmentLength;
}

/// Adds the channels of all signals onto the present total; `setup` begins from 0.
void SpectrumEstimator::computeTotalNumChannels() {
    signalPlaces.clear();
    for (int signal = 0; signal < numSignals; ++signal) {
        signalPlaces.push_back({totalNumChannels, getNumChannels(signal), isComplexSignal(signal)});
        totalNumChannels += signalPlaces.back().numChannels;
    }
}

void SpectrumEstimator::allocateTimeDomainResources() {
    computeSpan();
    computeDesiredRBW();
    computeZoomFFTDecimationFactor();
    computeActualSampleRate();
    computeDesiredSegmentLength();
    computeActualSegmentLength();
    computeActualRBW();
    computeFFTLength();
    computeFrequencyVector();
    computeDeltaFrequency();
    computeFrequencyVectorRange();
    computeSpectrumLength();
    computeNumOverlapSamples();
    computeDesiredNumSamplesPerUpdate();
    computeActualNumSamplesPerUpdate();
    allocateSpectrogramResources();
    setupBuffer();
    if (isFilterbankMode()) {
        allocateFilterbankResources();
    }
    allocateWelchResources();
    allocateZoomFFTResources();
    allocateFFTResources();
    allocateAveragingResources();
    if (showSpectrogram && numSegmentsPerBlock >= 2) {
        spectrogramCarry.resize(spectrumLength * totalNumChannels);
    }
}

void SpectrumEstimator::allocateFrequencyDomainResources() {
    if (isProcessingNewData) {
        computeFFTLength();
        computeSpectrumLength();
        computeActualSampleRate();
        computeFrequencyVector();
        computeDeltaFrequency();
    }
    computeDesiredRBW();
    computeActualRBW();
    if (isProcessingNewData && showSpectrogram) {
        allocateSpectrogramResources();
    }
}

void SpectrumEstimator::computeSpan() {
    fullSpan = isTwoSidedSpectrum() ? sampleRate : sampleRate * 0.5;
    if (isFrequencySpanFull()) {
        span = fullSpan;
    } else if (isFrequencySpanStartAndStopFrequencies()) {
        span = stopFrequency - startFrequency;
    } else {
        span = spanProperty;
    }
}

void SpectrumEstimator::computeDesiredRBW() {
    if (isFrequencyInputDomain()) {
        desiredRBW = autoRBW ? deltaFrequency : rbw;
        return;
    }
    desiredRBW = autoRBW ? span / static_cast<double>(defaultSegmentLength) : rbw;
    if (showSpectrogram && autoRBW && !autoTimeResolution) {
        desiredRBW = 1.0 / timeResolution;
    }
}

/// The band keeps its place: it is decimated without mixing, so the factor is bound by the edge farther from 0 Hz too.
void SpectrumEstimator::computeZoomFFTDecimationFactor() {
    zoomDecimationFactor = 1;
    zoomFFTEnabled = false;
    if (isFrequencySpanFull()) {
        return;
    }
    const bool byCenter = isFrequencySpanSpanAndCenterFrequency();
    const double low = std::abs(byCenter ? centerFrequency - spanProperty * 0.5 : startFrequency);
    const double high = std::abs(byCenter ? centerFrequency + spanProperty * 0.5 : stopFrequency);
    const double edge = std::max(low, high);
    const double forResolution = std::floor(sampleRate / (desiredRBW * 256.0));
    const double forEdge = std::floor(sampleRate * 0.85 / (edge + edge));
    const double forSpan = std::floor(sampleRate * 0.85 / span);
    zoomDecimationFactor = toCount(std::min({forResolution, forEdge, forSpan}));
    if (zoomDecimationFactor >= 2) {
        zoomDecimationFactor &= ~std::size_t{1};
    }
    zoomFFTEnabled = isZoomFFTEnabled();
}

bool SpectrumEstimator::isZoomFFTEnabled() const {
    return !isFrequencySpanFull() && span < fullSpan && zoomDecimationFactor >= 3 &&
           !isFrequencyResolutionMethodWindowLength();
}

void SpectrumEstimator::computeActualSampleRate() {
    actualSampleRate = isZoomInUse() ? sampleRate / static_cast<double>(zoomDecimationFactor) : sampleRate;
}

void SpectrumEstimator::computeDesiredSegmentLength() {
    if (isFilterbankMode()) {
        if (!isFrequencyResolutionMethodNumFrequencyBands()) {
            setSegmentLength(toCount(std::ceil(actualSampleRate / desiredRBW)));
        } else {
            setSegmentLength(autoFFTLength ? toCount(getUnbufferedFrameSize(0)) : fftLength);
        }
    } else if (!isFrequencyResolutionMethodRBW()) {
        setSegmentLength(windowLength);
    } else if (windowInvariantSamplesPerUpdate && autoRBW) {
        setSegmentLength(defaultSegmentLength);
    } else if (window == Window::custom) {
        setSegmentLength(customWindow.size());
    } else {
        setSegmentLength(toCount(computeSegmentLengthForRBW()));
    }
}

/// Length whose RBW is the one asked for. The noise bandwidth hangs on the length, so this iterates to a fixed point;
/// where it has none, the last of 100 rounds stands.
double SpectrumEstimator::computeSegmentLengthForRBW() {
    constexpr int maximumRounds = 100;
    double length = std::ceil(computeENBWForSearch(1000) * actualSampleRate / desiredRBW);
    for (int round = 0; round < maximumRounds; ++round) {
        const double before = length;
        const double bandwidth = std::round(computeENBWForSearch(toCount(std::ceil(before))) * 1e8) / 1e8;
        length = std::ceil(actualSampleRate * bandwidth / desiredRBW);
        if (length - before == 0.0) {
            break;
        }
    }
    return length;
}

double SpectrumEstimator::computeENBWForSearch(std::size_t n) {
    const WindowKey key{window, n, sidelobeAttenuation};
    const auto known =
        std::find_if(knownENBWs.begin(), knownENBWs.end(), [&key](const auto& entry) { return entry.first == key; });
    if (known != knownENBWs.end()) {
        return known->second;
    }
    computeENBW(n);
    constexpr std::size_t kept = 16;
    if (knownENBWs.size() == kept) {
        knownENBWs.erase(knownENBWs.begin());
    }
    knownENBWs.emplace_back(key, enbw);
    return enbw;
}

void SpectrumEstimator::computeActualSegmentLength() {
    actualSegmentLength =
        enableMaxSegmentLengthThreshold ? std::min(maximumSegmentLength, desiredSegmentLength) : desiredSegmentLength;
    actualSegmentLength = std::max<std::size_t>(actualSegmentLength, 1);
    computeENBW(actualSegmentLength);
    transientSegmentLength = actualSegmentLength;
}

void SpectrumEstimator::computeActualRBW() {
    if (isFrequencyInputDomain()) {
        actualRBW = desiredRBW;
    } else if (isFilterbankMode()) {
        actualRBW = actualSampleRate / static_cast<double>(actualSegmentLength);
    } else {
        actualRBW = enbw * actualSampleRate / static_cast<double>(actualSegmentLength);
    }
    transientRBW = actualRBW;
}

void SpectrumEstimator::computeFFTLength() {
    const std::size_t frame = toCount(getUnbufferedFrameSize(0));
    if (isFrequencyInputDomain()) {
        actualFFTLength = frame;
    } else if (isFrequencyResolutionMethodNumFrequencyBands()) {
        actualFFTLength = autoFFTLength ? frame : fftLength;
    } else if (isFilterbankMode() && isFrequencyResolutionMethodRBW()) {
        actualFFTLength = actualSegmentLength;
    } else {
        actualFFTLength = autoFFTLength ? std::max<std::size_t>(actualSegmentLength, 1024) : fftLength;
    }
    actualFFTLength = std::max<std::size_t>(actualFFTLength, 1);
}

std::size_t SpectrumEstimator::oneSidedLength() const {
    return actualFFTLength % 2 == 0 ? actualFFTLength / 2 + 1 : (actualFFTLength + 1) / 2;
}

void SpectrumEstimator::computeFrequencyVectorRange() {
    frequencyVectorRange = {0, frequencyVector.empty() ? 0 : frequencyVector.size() - 1};
    if (frequencyVector.empty() || !isFrequencyVectorTrimmed()) {
        return;
    }
    const bool byCenter = isFrequencySpanSpanAndCenterFrequency();
    const double low = byCenter ? centerFrequency - spanProperty * 0.5 : startFrequency;
    const double high = byCenter ? centerFrequency + spanProperty * 0.5 : stopFrequency;
    const auto begin = frequencyVector.begin();
    const auto above = std::upper_bound(begin, frequencyVector.end(), low);
    const auto first = above == begin ? begin : above - 1;
    // With an upper edge beyond the grid this is one past its end, and the spectrum is a point longer. That is meant:
    // the extra point repeats the last bin one step further on.
    const auto last = std::lower_bound(first, frequencyVector.end(), high);
    frequencyVectorRange = {static_cast<std::size_t>(first - begin), static_cast<std::size_t>(last - begin)};
}

bool SpectrumEstimator::isFrequencyVectorTrimmed() const {
    return !isFrequencySpanFull() && actualSegmentLength <= actualFFTLength && !isFrequencyInputDomain() &&
           (isZoomFFTEnabled() || showSpectrogram);
}

void SpectrumEstimator::computeSpectrumLength() {
    spectrumLength = isFrequencyInputDomain() || isTwoSidedSpectrum() ? actualFFTLength : oneSidedLength();
    if (isFrequencyVectorTrimmed()) {
        spectrumLength = frequencyVectorRange[1] - frequencyVectorRange[0] + 1;
    }
}

void SpectrumEstimator::computeNumOverlapSamples() {
    numOverlapSamples =
        isFilterbankMode() ? 0 : SpectrumBuffer::computeNumOverlapSamples(actualSegmentLength, overlapPercent);
}

void SpectrumEstimator::computeDesiredNumSamplesPerUpdate() {
    desiredNumSamplesPerUpdate = desiredSegmentLength - std::min(numOverlapSamples, desiredSegmentLength);
    if (isZoomInUse()) {
        desiredNumSamplesPerUpdate *= zoomDecimationFactor;
    }
}

void SpectrumEstimator::computeActualNumSamplesPerUpdate() {
    actualNumSamplesPerUpdate = actualSegmentLength - numOverlapSamples;
    if (isZoomInUse()) {
        actualNumSamplesPerUpdate *= zoomDecimationFactor;
    }
    transientNumSamplesPerUpdate = actualNumSamplesPerUpdate;
}

}  // namespace dspwavedecks
