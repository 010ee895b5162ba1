#include <algorithm>
#include <mutex>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

namespace {

int entryOf(const std::vector<int>& values, int signal) {
    return signal >= 0 && static_cast<std::size_t>(signal) < values.size() ? values[static_cast<std::size_t>(signal)]
                                                                           : 0;
}

}  // namespace

void SpectrumEstimator::setup(const int& signals, const std::vector<int>& newFrameSize,
                              const std::vector<int>& newUnbufferedFrameSize, const std::vector<int>& newNumChannels,
                              const std::vector<int>& newIsComplex, const bool& newIsProcessingNewData) {
    const std::lock_guard lock(mutex);
    layoutAtSetup.reset();
    layoutFits = false;
    numSignals = signals;
    frameSize = newFrameSize;
    unbufferedFrameSize = newUnbufferedFrameSize;
    numChannels = newNumChannels;
    isComplex = newIsComplex;
    isProcessingNewData = newIsProcessingNewData;
    totalNumChannels = 0;
    computeTotalNumChannels();

    if (isFrequencyInputDomain()) {
        allocateFrequencyDomainResources();
    } else {
        if (!spectrumBuffer) {
            spectrumBuffer.emplace();
        }
        allocateTimeDomainResources();
    }
    allocateMaxAndMinHoldResources();
    updateSpectrumMetaData();

    resetAveragingStates = false;
    resetFilterbankStates = false;
    resetMaxMinHoldStates = false;
    flushSpectrumBuffer = true;
    if (isProcessingNewData) {
        propertyChanged = false;
        useCachedSpectrumData = false;
    } else {
        useCachedSpectrumData = !propertyChanged;
    }
    layoutAtSetup = presentLayout();
    layoutFits = true;
    isLocked_ = true;
}

bool SpectrumEstimator::checkLayout() {
    layoutFits = layoutAtSetup == presentLayout();
    return layoutFits;
}

SpectrumEstimator::Layout SpectrumEstimator::presentLayout() const {
    return {inputDomain,      method,           isTwoSidedSpectrum(), isFrequencyVectorTrimmed(),
            plotMaxHoldTrace, plotMinHoldTrace, numTapsPerBand,       actualSegmentLength};
}

void SpectrumEstimator::release(const bool& fullReset) {
    isLocked_ = false;
    if (!fullReset && !resetFilterbankStates) {
        return;
    }
    desiredSegmentLengthMet = false;
    numSamplesProcessed = 0;
    numUpdatesProcessed = 0;
    totalNumSamplesProcessed = 0;
    ++recordVersion;
    metaData.resetCachedNumSamplesProcessed = true;
    dataHasNaNs = false;
    if (!fullReset) {
        return;
    }
    propertyChanged = false;
    resetAveragingStates = true;
    resetFilterbankStates = true;
    resetMaxMinHoldStates = true;
    resetSignalBuffers = false;
    flushSpectrumBuffer = true;
}

std::size_t SpectrumEstimator::getNumChannels(const int& signal) const {
    const int raw = std::max(entryOf(numChannels, signal), 0);
    return static_cast<std::size_t>(isComplexSignal(signal) ? raw / 2 : raw);
}

int SpectrumEstimator::getFrameSize(const int& signal) const {
    return entryOf(frameSize, signal);
}
int SpectrumEstimator::getUnbufferedFrameSize(const int& signal) const {
    return entryOf(unbufferedFrameSize, signal);
}

bool SpectrumEstimator::isComplexSignal(const int& signal) const {
    return entryOf(isComplex, signal) != 0;
}

bool SpectrumEstimator::isAnyInputComplex() const {
    return std::any_of(isComplex.begin(), isComplex.end(), [](int flag) { return flag != 0; });
}

std::string SpectrumEstimator::getInputDataType(const int& signal) const {
    const bool known = signal >= 0 && static_cast<std::size_t>(signal) < inputDataType.size();
    return known ? inputDataType[static_cast<std::size_t>(signal)] : "double";
}

std::size_t SpectrumEstimator::getChannelBufferIdx(const int& signal, const std::size_t& channel) const {
    std::size_t index = channel;
    for (int before = 0; before < signal; ++before) {
        index += getNumChannels(before);
    }
    return index;
}

std::size_t SpectrumEstimator::getOutputDataSize(const std::size_t& n) const {
    const bool bySegment = !propertyChanged && showSpectrogram && !isFrequencyInputDomain();
    return (outputFrequencyVector + n) * spectrumLength * (bySegment ? numSegments : 1);
}

std::size_t SpectrumEstimator::getOutputDataIdx(const std::size_t& channel, const std::size_t& segment) const {
    const std::size_t row = channel + outputFrequencyVector;
    const bool bySegment = !propertyChanged && showSpectrogram;
    return (bySegment ? segment + row * numSegments : row) * spectrumLength;
}

std::size_t SpectrumEstimator::getNumSpectrumBlocks() const {
    if (propertyChanged || !showSpectrogram) {
        return 1;
    }
    return numSegmentsPerBlock == 0 ? 0 : numSegments / numSegmentsPerBlock;
}

bool SpectrumEstimator::isDesiredSegmentLengthMet(const bool& flag) const {
    if (!enableDesiredSegmentLengthThreshold && !flag) {
        return !desiredSegmentLengthMet;
    }
    return !enableDesiredSegmentLengthThreshold || flag;
}

// All but what an update writes: the number of segments and blocks, the RBW of the update, and that it is there.
void SpectrumEstimator::updateSpectrumMetaData() {
    const auto signals = static_cast<std::size_t>(std::max(numSignals, 0));
    ++recordVersion;
    metaData.segmentLength = actualSegmentLength;
    metaData.fftLength = actualFFTLength;
    metaData.spectrumLength = spectrumLength;
    metaData.numSpectrogramLines = getNumSpectrogramLines();
    metaData.numSamplesPerUpdate = numSegmentsPerBlock * desiredNumSamplesPerUpdate;
    metaData.spectrogramChannel = spectrogramChannel;
    metaData.numSamplesProcessed = numSamplesProcessed;
    metaData.numUpdatesProcessed = numUpdatesProcessed;
    metaData.numSpectralAverages = actualSpectralAverages;
    metaData.sampleRate = sampleRate;
    metaData.rbw = actualRBW;
    metaData.vbw = actualVBW;
    metaData.enbw = enbw;
    metaData.timeResolution = actualTimeResolution;
    metaData.timeSpan = actualTimeSpan;
    metaData.timeIncrement = timeIncrement;
    metaData.forgettingFactor = actualForgettingFactor;
    metaData.minDeltaF = deltaFrequency;
    metaData.plotMaxHoldTrace = plotMaxHoldTrace;
    metaData.plotMinHoldTrace = plotMinHoldTrace;
    metaData.showSpectrum = showSpectrum;
    metaData.showSpectrogram = showSpectrogram;
    metaData.linearFrequencyVector = linearFrequencyVector;
    metaData.maxSegmentLengthMet = maxSegmentLengthMet;
    metaData.desiredSegmentLengthMet = desiredSegmentLengthMet;
    metaData.fullScaleOverflow = fullScaleOverflow;
    metaData.resetSignalBuffers = resetSignalBuffers;
    metaData.dataHasNaNs = dataHasNaNs;
    metaData.useNaNsInCalculatingAverages = useNaNsInCalculatingAverages;
    metaData.frequencyVector.resize(spectrumLength);
    copyFrequencyVector(metaData.frequencyVector.data(), spectrumLength);
    metaData.frequencyOffset = frequencyOffset;
    metaData.spectrumData.resize(signals);
    metaData.numChannels.resize(signals);
    for (std::size_t signal = 0; signal < signals; ++signal) {
        metaData.numChannels[signal] = static_cast<int>(getNumChannels(static_cast<int>(signal)));
    }
}

void SpectrumEstimator::updateComputedSpectrumMetaData() {
    metaData.timeResolution = actualTimeResolution;
    metaData.timeSpan = actualTimeSpan;
    metaData.numSegments = numSegments;
    metaData.numSpectrumBlocks = numSpectrumBlocks;
    metaData.timeIncrement = timeIncrement;
    metaData.transientRBW = transientRBW;
    metaData.enbw = enbw;
    metaData.numSamplesProcessed = numSamplesProcessed;
    metaData.numUpdatesProcessed = numUpdatesProcessed;
    metaData.desiredSegmentLengthMet = desiredSegmentLengthMet;
    metaData.isNewDataReady = true;
    metaData.dataHasNaNs = dataHasNaNs;
    metaData.resetSignalBuffers = resetSignalBuffers;
}

void SpectrumEstimator::updateProcessedSpectrumMetaData() {
    metaData.numSegments = 1;
    metaData.numSpectrumBlocks = 1;
    metaData.numSamplesProcessed = numSamplesProcessed;
    metaData.numUpdatesProcessed = numUpdatesProcessed;
    if (!autoRBW) {
        metaData.rbw = actualRBW;
    }
    if (!autoFrequencyVector) {
        copyFrequencyVector(metaData.frequencyVector.data(), metaData.frequencyVector.size());
    }
    metaData.transientRBW = desiredRBW;
    metaData.isNewDataReady = true;
}

}  // namespace dspwavedecks
