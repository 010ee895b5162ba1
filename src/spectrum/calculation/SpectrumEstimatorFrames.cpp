#include <algorithm>

#include "SpectrumEstimator.h"

// The road of a frame: into the buffer, out of it in segments, and from the rows of these to an update.

namespace dspwavedecks {

namespace {

/// While it lives, segments are read in the frame; ends that also when a computation fails, for the frame goes away.
template <class Place>
class WhileInFrame {
public:
    WhileInFrame(Place& place, const Place& inFrame) : place(place) { place = inFrame; }
    WhileInFrame(const WhileInFrame&) = delete;
    WhileInFrame& operator=(const WhileInFrame&) = delete;
    ~WhileInFrame() { place = {}; }

private:
    Place& place;
};

}  // namespace

const spectrumEstimatorMetaDataStruct& SpectrumEstimator::computeSpectrum(const double* data, std::vector<double>& out,
                                                                          const int& signal) {
    if (isFrequencyInputDomain() || !isLaidOutFor(signal)) {
        return metaData;
    }
    if (useCachedSpectrumData) {
        repeatCachedSpectrum(out, signal);
        return metaData;
    }
    propertyChanged = false;
    const SignalPlace place = signalPlaces[static_cast<std::size_t>(signal)];
    const std::size_t samples = numSamplesInFrame(signal);
    if (endsBeforeSegment(signal, samples)) {
        spectrumBuffer->addFrame(data, place.firstChannel, samples, place.numChannels, place.isComplex);
        spectrumBuffer->setZerosInFirstSegment(true);
        return metaData;
    }
    computeFrame(data, out, signal, samples);
    return metaData;
}

/// A frame that may complete segments.
void SpectrumEstimator::computeFrame(const double* data, std::vector<double>& out, const int& signal,
                                     std::size_t samples) {
    const std::size_t channels = getNumChannels(signal);
    if (numSignals == 1 && desiredSegmentLengthMet && !showSpectrogram && numSegmentsPerBlock == 1) {
        computeInSlices(data, out, channels);
        return;
    }
    addDataToSpectrumBuffer(data, signal, channels, {0, samples, samples});
    const bool ready = spectrumBuffer->isReady() && !isZoomLeadInPending(0);
    if (!ready && (enableDesiredSegmentLengthThreshold || desiredSegmentLengthMet)) {
        spectrumBuffer->setZerosInFirstSegment(true);
        return;
    }
    ++recordVersion;
    metaData.isNewDataReady = false;
    // The signal's number stands for a channel of the buffer here. The two differ once a signal has several channels;
    // that is meant.
    const auto bufferIndex = static_cast<std::size_t>(signal);
    transientSegmentLength = computeTransientSegmentLength(bufferIndex, ready);
    if (!desiredSegmentLengthMet) {
        beginTransientUpdate(ready);
    }
    // A signal that has no new segment keeps its output, its cached rows and its traces.
    const std::size_t newSegments = getNumSegments(bufferIndex);
    if (newSegments != 0) {
        numSegments = newSegments;
        numSpectrumBlocks = getNumSpectrumBlocks();
        computeUpdate(out, signal, channels);
    }
    if (isLastSignal(signal)) {
        finishFrame(ready, newSegments);
    }
    updateComputedSpectrumMetaData();
    resetSignalBuffers = false;
}

/// Whether a frame surely completes no segment, and so no update: that is seen from channel 0 alone, as everywhere.
bool SpectrumEstimator::endsBeforeSegment(const int& signal, std::size_t samples) const {
    if (zoomFFTEnabled || (!enableDesiredSegmentLengthThreshold && !desiredSegmentLengthMet)) {
        return false;
    }
    const std::size_t held = spectrumBuffer->size(0);
    const std::size_t opened = held == 0 ? spectrumBuffer->getNumOverlapSamples() : 0;
    // A signal without channels leaves channel 0 to the next one.
    const bool mayBeItsChannel = signalPlaces[static_cast<std::size_t>(signal)].firstChannel == 0;
    return held + opened + (mayBeItsChannel ? samples : 0) < spectrumBuffer->getSegmentLength();
}

/// Played-again frames whose settings did not change: the rows of the last update once more.
void SpectrumEstimator::repeatCachedSpectrum(std::vector<double>& out, const int& signal) {
    const std::size_t channels = getNumChannels(signal);
    const bool bySegment = !propertyChanged && showSpectrogram;
    const std::size_t rows = !bySegment ? 1 : numSegmentsPerBlock < 2 ? numSegments : numSpectrumBlocks;
    out.assign((outputFrequencyVector + channels) * spectrumLength * rows, 0.0);
    if (rows != 0) {
        addFrequencyVectorToOutputBuffer(out);
    }
    const std::vector<double>& cached = metaData.spectrumData[static_cast<std::size_t>(signal)];
    const std::size_t place = std::min(numSpectrumBlocks * spectrumLength, out.size());
    std::copy_n(cached.begin(), std::min(cached.size(), out.size() - place),
                out.begin() + static_cast<std::ptrdiff_t>(place));
    ++recordVersion;
    metaData.resetSignalBuffers = resetSignalBuffers;
}

/// A single signal in steady state. Its segments are the same ones, in the same order, but they are not all stored
/// before the first is transformed: real segments that lie within the frame are read where they are, others go through
/// the buffer in slices that stay in the first cache. Several signals have to wait for one another, and a spectrogram
/// needs to know the number of its rows.
void SpectrumEstimator::computeInSlices(const double* data, std::vector<double>& out, const std::size_t& channels) {
    const int signal = 0;
    const std::size_t samples = numSamplesInFrame(signal);
    std::size_t newSegments = 0;
    const auto compute = [&](std::size_t segments) {
        if (newSegments == 0) {
            transientSegmentLength = actualSegmentLength;
            numSpectrumBlocks = 1;
            prepareOutput(out, channels);
        }
        numSegments = segments;
        computeSegments(out, signal, channels);
        newSegments += segments;
    };
    for (std::size_t first = 0; first < samples;) {
        const std::size_t inFrame = numSegmentsInFrame(first, samples);
        if (inFrame != 0) {
            const std::size_t shared = spectrumBuffer->getNumOverlapSamples();
            {
                const WhileInFrame place(segmentsInFrame, SegmentsInFrame{data, samples, first - shared});
                compute(inFrame);
            }
            first += inFrame * (actualSegmentLength - shared);
            for (std::size_t channel = 0; channel < channels; ++channel) {
                spectrumBuffer->continueFrom(data + channel * samples + (first - shared), channel);
            }
            continue;
        }
        const std::size_t count = std::min(sliceLength(), samples - first);
        addDataToSpectrumBuffer(data, signal, channels, {first, count, samples});
        first += count;
        if (spectrumBuffer->isReady() && !isZoomLeadInPending(0)) {
            compute(getNumSegments(0));
            spectrumBuffer->clear();
        }
    }
    if (newSegments == 0) {
        spectrumBuffer->setZerosInFirstSegment(true);
        return;
    }
    ++recordVersion;
    metaData.isNewDataReady = false;
    numSegments = newSegments;
    finishOutput(out, signal, channels);
    finishFrame(false, newSegments);
    updateComputedSpectrumMetaData();
    resetSignalBuffers = false;
}

/// Segments that begin with the samples shared with the one before and lie within the frame as a whole, if the buffer
/// stands at the beginning of a segment when `first` samples of the frame have been taken.
std::size_t SpectrumEstimator::numSegmentsInFrame(std::size_t first, std::size_t samples) const {
    const std::size_t shared = spectrumBuffer->getNumOverlapSamples();
    const bool atBoundary = spectrumBuffer->size(0) == shared && first >= shared;
    if (!atBoundary || spectrumBuffer->holdsComplexSamples() || isZoomInUse()) {
        return 0;
    }
    return (samples - first) / (actualSegmentLength - shared);
}

/// Up to the end of the open segment where segments can be read in the frame from there on; else some segments.
std::size_t SpectrumEstimator::sliceLength() const {
    const std::size_t L = spectrumBuffer->getSegmentLength();
    const std::size_t hop = L - spectrumBuffer->getNumOverlapSamples();
    if (!spectrumBuffer->holdsComplexSamples()) {
        const std::size_t held = spectrumBuffer->size(0);
        const std::size_t open = held < L ? held : held % L;
        return open == 0 ? hop : L - open;
    }
    constexpr std::size_t leastSamples = 1024;  // below, calls cost more than the cache gains
    return hop * std::max(transform.segments(), leastSamples / hop);
}

void SpectrumEstimator::addDataToSpectrumBuffer(const double* data, const int& signal, const std::size_t& channels,
                                                const SpectrumBuffer::Slice& slice) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t index = getChannelBufferIdx(signal, channel);
        beginZoomChannel(index);
        spectrumBuffer->addData(data + slice.frameSize * channel, index, slice, channels, isComplexSignal(signal));
        takeZoomLeadIn(index);
    }
}

std::size_t SpectrumEstimator::getNumSegments(const std::size_t& bufferIndex) const {
    const std::size_t held = isZoomLeadInPending(bufferIndex) ? 0 : spectrumBuffer->getNumSegments(bufferIndex);
    return held == 0 && !enableDesiredSegmentLengthThreshold ? 1 : held;
}

std::size_t SpectrumEstimator::computeTransientSegmentLength(const std::size_t& bufferIndex, bool ready) const {
    const std::size_t held = spectrumBuffer->size(bufferIndex);
    if (!isZoomInUse()) {
        return std::min(actualSegmentLength, held);
    }
    if (ready || desiredSegmentLengthMet) {
        return actualSegmentLength;
    }
    return std::min(actualSegmentLength, getNumZoomPointsBefore(bufferIndex) + held / zoomDecimationFactor);
}

double SpectrumEstimator::computeTransientRBW(const std::size_t& length) const {
    if (isPlainFilterbank() || desiredSegmentLengthMet) {
        return actualRBW;
    }
    return enbw * actualSampleRate / static_cast<double>(length);
}

void SpectrumEstimator::computeTransientNumSamplesPerUpdate() {
    transientNumSamplesPerUpdate = transientSegmentLength - std::min(numOverlapSamples, transientSegmentLength);
    if (isZoomInUse()) {
        transientNumSamplesPerUpdate *= zoomDecimationFactor;
    }
}

/// An update before the first whole segment, or the one that has it.
void SpectrumEstimator::beginTransientUpdate(bool ready) {
    desiredSegmentLengthMet = ready;
    numSamplesProcessed = 0;
    totalNumSamplesProcessed = 0;
    if (enableDesiredSegmentLengthThreshold) {
        return;
    }
    if (transientSegmentLength != windowData.size() && window != Window::custom) {
        computeENBW(transientSegmentLength);
        computeWindowPower();
    }
    transientRBW = computeTransientRBW(transientSegmentLength);
    computeActualForgettingFactor();
    computeTransientNumSamplesPerUpdate();
    allocateSpectrogramResources();
    resetMaxMinHoldStates = true;
    resetSignalBuffers = true;
}

void SpectrumEstimator::prepareOutput(std::vector<double>& out, const std::size_t& channels) const {
    out.resize(getOutputDataSize(channels));
    addFrequencyVectorToOutputBuffer(out);
    if (outputFrequencyVector != 0 && showSpectrogram) {
        const auto grid = out.begin() + static_cast<std::ptrdiff_t>(spectrumLength);
        std::fill(grid, grid + static_cast<std::ptrdiff_t>((numSegments - 1) * spectrumLength), 0.0);
    }
}

void SpectrumEstimator::finishOutput(std::vector<double>& out, const int& signal, const std::size_t& channels) {
    aggregateSpectrum(out, signal, channels);
    scaleSpectrum(out, signal, channels);
    if (showSpectrum) {
        scaleMaxMinHoldTraceSpectrum(signal, channels);
    }
    cacheSpectrum(out, signal, channels);
}

void SpectrumEstimator::computeUpdate(std::vector<double>& out, const int& signal, const std::size_t& channels) {
    prepareOutput(out, channels);
    if (isZoomInUse() && !desiredSegmentLengthMet) {
        zoomStateAtStart = zoomState;
        computeSegments(out, signal, channels);
        zoomState = zoomStateAtStart;  // the same samples come again, in a longer segment
    } else {
        computeSegments(out, signal, channels);
    }
    finishOutput(out, signal, channels);
}

/// The one counter goes on with each signal, the other with the last one alone; both are meant.
void SpectrumEstimator::countSegment(const int& signal) {
    const auto count = [this](std::size_t& counter) {
        counter = (desiredSegmentLengthMet ? counter : 0) + transientSegmentLength;
    };
    count(numSamplesProcessed);
    if (isLastSignal(signal)) {
        count(totalNumSamplesProcessed);
    }
}

/// What the first whole segment lacks stays in the record once that is there: meant so, readers ask first whether
/// segments are whole.
void SpectrumEstimator::finishFrame(bool ready, std::size_t newSegments) {
    if (desiredSegmentLengthMet) {
        if (ready) {
            spectrumBuffer->clear();
        }
        if (isProcessingNewData) {
            numUpdatesProcessed += newSegments;
        }
    } else if (isZoomInUse()) {
        metaData.numAdditionalSamples = zoomDecimationFactor * (actualSegmentLength - transientSegmentLength);
    } else {
        metaData.numAdditionalSamples = metaData.numSamplesPerUpdate + numOverlapSamples - transientSegmentLength;
    }
}

void SpectrumEstimator::cacheSpectrum(const std::vector<double>& out, const int& signal, const std::size_t& channels) {
    std::vector<double>& cached = metaData.spectrumData[static_cast<std::size_t>(signal)];
    const std::size_t start = std::min(numSpectrumBlocks * spectrumLength, out.size());
    cached.resize(channels * numSpectrumBlocks * spectrumLength);
    std::copy_n(out.begin() + static_cast<std::ptrdiff_t>(start), std::min(cached.size(), out.size() - start),
                cached.begin());
}

const spectrumEstimatorMetaDataStruct& SpectrumEstimator::processSpectrum(const double* data, std::vector<double>& out,
                                                                          const int& signal) {
    if (!isLaidOutFor(signal)) {
        return metaData;
    }
    ++recordVersion;
    metaData.isNewDataReady = false;
    numSegments = 1;
    const std::size_t channels = getNumChannels(signal);
    const std::size_t S = spectrumLength;
    const std::size_t frame = toCount(getFrameSize(signal));
    out.resize((outputFrequencyVector + channels) * S);
    addFrequencyVectorToOutputBuffer(out);
    if (S >= frame) {
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(outputFrequencyVector * S), out.end(), 0.0);
        const std::size_t place = std::min(frame, out.size());
        std::copy_n(data, std::min(channels * frame, out.size() - place), out.data() + place);
    } else {
        // Of frames longer than the spectrum the last values count.
        for (std::size_t channel = 0; channel < channels; ++channel) {
            std::copy_n(data + channel * frame + (frame - S), S, out.data() + (channel + outputFrequencyVector) * S);
        }
    }
    scaleFrequencyDomainSpectrum(out);
    if (!propertyChanged && isAnyHoldTraceOn() && showSpectrum) {
        computeMaxAndMinHoldTraceSpectrum(out, signal, channels);
    }
    numSamplesProcessed += S;
    ++numUpdatesProcessed;
    numSpectrumBlocks = 1;
    metaData.spectrumData[static_cast<std::size_t>(signal)].assign(
        out.begin() + static_cast<std::ptrdiff_t>(outputFrequencyVector * S), out.end());
    updateProcessedSpectrumMetaData();
    return metaData;
}

}  // namespace dspwavedecks
