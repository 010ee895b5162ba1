#include <algorithm>
#include <mutex>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

void SpectrumEstimator::mark(unsigned marks) {
    layoutFits = false;
    propertyChanged = propertyChanged || (marks & changed) != 0;
    resetAveragingStates = resetAveragingStates || (marks & averaging) != 0;
    resetFilterbankStates = resetFilterbankStates || (marks & filterbank) != 0;
    resetMaxMinHoldStates = resetMaxMinHoldStates || (marks & holdTraces) != 0;
    resetSignalBuffers = resetSignalBuffers || (marks & signalBuffers) != 0;
}

/// Stores a value that differs from the present one and marks what that upsets; false if it is the same.
template <class T>
bool SpectrumEstimator::assign(T& field, const T& value, unsigned marks) {
    if (field == value) {
        return false;
    }
    field = value;
    mark(marks);
    return true;
}

template <class T>
bool SpectrumEstimator::assignLocked(T& field, const T& value, unsigned marks) {
    const std::lock_guard lock(mutex);
    return assign(field, value, marks);
}

// What the span and the resolution hang on: nothing of what was computed still fits.

void SpectrumEstimator::setSampleRate(const double& value) {
    assignLocked(sampleRate, value, everything);
}
void SpectrumEstimator::setMethod(const Method& value) {
    assignLocked(method, value, everything);
}
void SpectrumEstimator::setFrequencyRange(const FrequencyRange& value) {
    assignLocked(frequencyRange, value, everything);
}
void SpectrumEstimator::setFrequencySpan(const FrequencySpan& value) {
    assignLocked(frequencySpan, value, everything);
}
void SpectrumEstimator::setFrequencyResolutionMethod(const FrequencyResolutionMethod& value) {
    assignLocked(frequencyResolutionMethod, value, everything);
}
void SpectrumEstimator::setSpan(const double& value) {
    assignLocked(spanProperty, value, everything);
}
void SpectrumEstimator::setCenterFrequency(const double& value) {
    assignLocked(centerFrequency, value, everything);
}
void SpectrumEstimator::setStartFrequency(const double& value) {
    assignLocked(startFrequency, value, everything);
}
void SpectrumEstimator::setStopFrequency(const double& value) {
    assignLocked(stopFrequency, value, everything);
}
void SpectrumEstimator::setWindowInvariantSamplesPerUpdate(const bool& value) {
    assignLocked(windowInvariantSamplesPerUpdate, value, everything);
}

void SpectrumEstimator::setRBW(const double& value) {
    const std::lock_guard lock(mutex);
    if (!autoRBW && assign(rbw, value, everything)) {
        computeDesiredRBW();
        computeActualRBW();
    }
}

void SpectrumEstimator::setAutoRBW(const bool& value) {
    assignLocked(autoRBW, value, changed | averaging | filterbank | holdTraces);
}

// Segments and windows.

void SpectrumEstimator::setSpectrumType(const SpectrumType& value) {
    assignLocked(spectrumType, value, changed | signalBuffers);
}
void SpectrumEstimator::setShowSpectrum(const bool& value) {
    // Beside a spectrogram the spectrum comes and goes without a new setup.
    const std::lock_guard lock(mutex);
    assign(showSpectrum, value, showSpectrogram ? signalBuffers : changed | signalBuffers);
}
void SpectrumEstimator::setShowSpectrogram(const bool& value) {
    assignLocked(showSpectrogram, value, changed | signalBuffers);
}
void SpectrumEstimator::setAutoFFTLength(const bool& value) {
    assignLocked(autoFFTLength, value, changed | signalBuffers);
}
void SpectrumEstimator::setSidelobeAttenuation(const double& value) {
    assignLocked(sidelobeAttenuation, value, changed | signalBuffers);
}
void SpectrumEstimator::setFFTLength(const std::size_t& value) {
    assignLocked(fftLength, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setWindow(const Window& value) {
    // Hold traces are kept on purpose: windows are compared by what each of them held.
    assignLocked(window, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setWindowLength(const std::size_t& value) {
    const std::lock_guard lock(mutex);
    if (isFrequencyResolutionMethodWindowLength()) {
        assign(windowLength, value, changed | averaging | signalBuffers);
    }
}
void SpectrumEstimator::setCustomWindow(const std::vector<double>& value) {
    const std::lock_guard lock(mutex);
    if (window == Window::custom) {
        assign(customWindow, value, changed | signalBuffers);
    }
}

void SpectrumEstimator::setOverlapPercent(const double& value) {
    const std::lock_guard lock(mutex);
    if (!assign(overlapPercent, value, changed)) {
        return;
    }
    overlapChanged = true;
    if (!isFrequencyInputDomain() && spectrumBuffer) {
        spectrumBuffer->setOverlapPercent(bufferOverlapPercent());
        mark(signalBuffers);
    }
}

// Spectrogram.

void SpectrumEstimator::setAutoTimeSpan(const bool& value) {
    assignLocked(autoTimeSpan, value, changed | signalBuffers);
}
void SpectrumEstimator::setTimeSpan(const double& value) {
    assignLocked(timeSpan, value, changed | signalBuffers);
}
void SpectrumEstimator::setAutoTimeResolution(const bool& value) {
    assignLocked(autoTimeResolution, value, changed | filterbank | holdTraces | signalBuffers);
}
void SpectrumEstimator::setTimeResolution(const double& value) {
    assignLocked(timeResolution, value, changed | filterbank | holdTraces | signalBuffers);
}
void SpectrumEstimator::setSpectrogramChannel(const std::size_t& value) {
    assign(spectrogramChannel, value, changed | signalBuffers);
}

// Averaging, units and traces.

void SpectrumEstimator::setAveragingMethod(const AveragingMethod& value) {
    assign(averagingMethod, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setForgettingFactor(const double& value) {
    assign(forgettingFactor, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setAutoVBW(const bool& value) {
    assign(autoVBW, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setVBW(const double& value) {
    assign(vbw, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setSpectralAverages(const std::size_t& value) {
    assign(spectralAverages, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setReferenceLoad(const double& value) {
    assign(referenceLoad, value, changed | averaging | signalBuffers);
}
void SpectrumEstimator::setSpectrumUnits(const SpectrumUnits& value) {
    assign(spectrumUnits, value, changed | signalBuffers);
}
void SpectrumEstimator::setInputUnits(const SpectrumUnits& value) {
    assign(inputUnits, value, changed | signalBuffers);
}
void SpectrumEstimator::setPlotMaxHoldTrace(const bool& value) {
    assign(plotMaxHoldTrace, value, changed | signalBuffers);
}
void SpectrumEstimator::setPlotMinHoldTrace(const bool& value) {
    assign(plotMinHoldTrace, value, changed | signalBuffers);
}
void SpectrumEstimator::setNumTapsPerBand(const std::size_t& value) {
    assign(numTapsPerBand, value, changed | filterbank | holdTraces | signalBuffers);
}
void SpectrumEstimator::setAutoFullScale(const bool& value) {
    assign(autoFullScale, value, changed);
}
void SpectrumEstimator::setFullScale(const double& value) {
    assign(fullScale, value, changed);
}

// Input.

void SpectrumEstimator::setInputDomain(const InputDomain& value) {
    assign(inputDomain, value, changed);
}
void SpectrumEstimator::setInputDataType(const std::vector<std::string>& value) {
    assign(inputDataType, value, changed);
}
void SpectrumEstimator::setInputRange(const std::vector<double>& value) {
    assign(inputRange, value, changed);
}
void SpectrumEstimator::setDefaultSegmentLength(const std::size_t& value) {
    assign(defaultSegmentLength, value, changed);
}
void SpectrumEstimator::setMinimumSegmentLength(const std::size_t& value) {
    assign(minimumSegmentLength, value, changed);
}
void SpectrumEstimator::setMaximumSegmentLength(const std::size_t& value) {
    assign(maximumSegmentLength, value, changed);
}
void SpectrumEstimator::setAutoFrequencyVector(const bool& value) {
    assign(autoFrequencyVector, value, changed);
}
void SpectrumEstimator::setFrequencyVector(const std::vector<double>& value) {
    if (!autoFrequencyVector) {
        assign(frequencyVector, value, changed);
    }
}
void SpectrumEstimator::setFrequencyOffset(const std::vector<double>& value) {
    assign(frequencyOffset, value, changed | signalBuffers);
}

// Called with every frame: only a size that changes takes the lock.

void SpectrumEstimator::setFrameSize(const std::vector<int>& value) {
    if (value == frameSize) {
        return;
    }
    const std::lock_guard lock(mutex);
    frameSize = value;
}
void SpectrumEstimator::setUnbufferedFrameSize(const std::vector<int>& value) {
    if (value == unbufferedFrameSize) {
        return;
    }
    const std::lock_guard lock(mutex);
    unbufferedFrameSize = value;
}

void SpectrumEstimator::setSampleRateForFrameSizeChange(const double& value) {
    const std::lock_guard lock(mutex);
    if (!assign(sampleRate, value, changed) || !isLocked_) {
        return;
    }
    // The samples held, the averages and the bank's lines still fit; the traces belong to the old grid.
    flushSpectrumBuffer = false;
    resetAveragingStates = false;
    resetFilterbankStates = false;
    resetMaxMinHoldStates = true;
    isLocked_ = false;
}

void SpectrumEstimator::setSegmentLength(const std::size_t& n) {
    maxSegmentLengthMet = enableMaxSegmentLengthThreshold && n > maximumSegmentLength;
    desiredSegmentLength = std::max(n, minimumSegmentLength);
}

std::size_t SpectrumEstimator::getTargetSegmentLength(const bool& newAutoRBW, const double& newRBW,
                                                      const double& newSampleRate) {
    setAutoRBW(newAutoRBW);
    if (!newAutoRBW) {
        setRBW(newRBW);
    }
    setSampleRate(newSampleRate);
    const std::lock_guard lock(mutex);
    computeActualSampleRate();
    computeDesiredSegmentLength();
    computeActualSegmentLength();
    layoutFits = false;
    return actualSegmentLength;
}

}  // namespace dspwavedecks
