#include <algorithm>
#include <complex>

#include "SpectrumEstimator.h"
#include "VectorMath.h"

namespace dspwavedecks {

void SpectrumEstimator::setupBuffer() {
    if (flushSpectrumBuffer) {
        spectrumBuffer->setup(static_cast<std::size_t>(std::max(numSignals, 0)), totalNumChannels, isAnyInputComplex());
    }
    // Zoomed segments are stored as they come in, without their overlap: that is taken from the decimated samples.
    spectrumBuffer->setSegmentLength(isZoomInUse() ? actualNumSamplesPerUpdate
                                                   : std::max(actualSegmentLength, actualNumSamplesPerUpdate));
    spectrumBuffer->setOverlapPercent(bufferOverlapPercent());
    spectrumBuffer->setSegmentsPerBlock(numSegmentsPerBlock);
    spectrumBuffer->setZerosInFirstSegment(isProcessingNewData || !overlapChanged);
    overlapChanged = false;
    if (flushSpectrumBuffer) {
        spectrumBuffer->flush();
    }
}

void SpectrumEstimator::allocateWelchResources() {
    const bool fillingBank = isFilterbankInHybridMode();
    if (!isFilterbankMode() || fillingBank) {
        computeWindowPower();
    }
}

void SpectrumEstimator::allocateFFTResources() {
    // The bank's kernels take segments in groups, as long as these are small; a zoomed segment is made by itself.
    constexpr std::size_t mostPoints = std::size_t{1} << 20U;
    const std::size_t points = std::max<std::size_t>(totalNumChannels * actualFFTLength, 1);
    const bool groups = isFilterbankMode() && kernelBank.inUse && !isZoomInUse();
    transform.allocate(totalNumChannels, actualFFTLength,
                       groups ? std::clamp<std::size_t>(mostPoints / points, 1, 8) : 1);
}

void SpectrumEstimator::resetFFTResources() {
    if (isLocked_ && !isFrequencyInputDomain()) {
        transform.reset();
    }
}

const spectrumEstimatorMetaDataStruct& SpectrumEstimator::computeSpectrum(const double* data, std::vector<double>& out,
                                                                          const int& signal) {
    if (signal < 0 || signal >= numSignals || !spectrumBuffer) {
        return metaData;
    }
    if (useCachedSpectrumData) {
        repeatCachedSpectrum(out, signal);
        return metaData;
    }
    propertyChanged = false;
    const std::size_t channels = getNumChannels(signal);
    if (numSignals == 1 && desiredSegmentLengthMet && !showSpectrogram && numSegmentsPerBlock == 1) {
        computeInSlices(data, out, channels);
        return metaData;
    }
    const std::size_t samples = toCount(getFrameSize(signal));
    addDataToSpectrumBuffer(data, signal, channels, {0, samples, samples});
    const bool ready = spectrumBuffer->isReady() && !isZoomLeadInPending(0);
    if (!ready && (enableDesiredSegmentLengthThreshold || desiredSegmentLengthMet)) {
        spectrumBuffer->setZerosInFirstSegment(true);
        return metaData;
    }
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
    return metaData;
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
    metaData.resetSignalBuffers = resetSignalBuffers;
}

/// A single signal in steady state. Its segments are the same ones, in the same order, but they are not all stored
/// before the first is transformed: real segments that lie within the frame are read where they are, others go through
/// the buffer in slices that stay in the first cache. Several signals have to wait for one another, and a spectrogram
/// needs to know the number of its rows.
void SpectrumEstimator::computeInSlices(const double* data, std::vector<double>& out, const std::size_t& channels) {
    const int signal = 0;
    const std::size_t samples = toCount(getFrameSize(signal));
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
            segmentsInFrame = {data, samples, first - shared};
            compute(inFrame);
            segmentsInFrame = {};
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
        const std::size_t open = spectrumBuffer->size(0) % L;
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

void SpectrumEstimator::computeSegments(std::vector<double>& out, const int& signal, const std::size_t& channels) {
    // As many channels at a time as stay in the first cache from their window to their power, and all segments of these
    // before the next ones: their samples come in as one stream. Bank and zoom make a segment of all channels at once.
    constexpr std::size_t fewPoints = 1024;
    const std::size_t channelsAtOnce = std::max<std::size_t>(fewPoints / actualFFTLength, 1);
    const std::size_t segmentsAtOnce = isFilterbankMode() || isZoomInUse() ? 1 : numSegments;
    for (std::size_t first = 0; first < numSegments; first += segmentsAtOnce) {
        averageWeights.clear();
        for (std::size_t segment = first; segment < first + segmentsAtOnce; ++segment) {
            countSegment(signal);
            prepareSegment(signal, channels, segment);
            const bool averages = desiredSegmentLengthMet && !isAveragingDisallowed();
            rowsAreInAverage = averages && canAverageInPlace();
            averageWeights.push_back(averages ? nextAverageWeight(signal) : 0.0);
        }
        for (std::size_t channel = 0; channel < channels; channel += channelsAtOnce) {
            const std::size_t end = std::min(channel + channelsAtOnce, channels);
            for (std::size_t segment = first; segment < first + segmentsAtOnce; ++segment) {
                computeSegmentPart(out, {signal, segment, channel, end, averageWeights[segment - first]});
            }
        }
    }
    if (rowsAreInAverage) {
        copyAverageToRows(out, signal, channels);
    }
}

/// What comes before the windows of a segment: the points of a zoomed one, and what the bank gives.
void SpectrumEstimator::prepareSegment(const int& signal, const std::size_t& channels, const std::size_t& segment) {
    if (isZoomInUse()) {
        computeZoomSegment(signal, channels, segment);
    }
    if (isFilterbankMode() && desiredSegmentLengthMet) {
        if (kernelBank.inUse) {
            computeKernelAnalysis(signal, channels, segment);
        } else {
            computeFIRPolyphaseAnalysis(signal, channels, segment);
            addFIRPolyphaseAnalysisDataToFFTBuffer(signal, channels);
        }
    }
    // Hold traces don't keep what was shown while the bank filled.
    if (isFilterbankInSteadyStateStart() && desiredSegmentLength != 0 && useWelchForFilterBankTransient) {
        resetMaxMinHoldStates = true;
    }
    if (isAnyHoldTraceOn() && showSpectrum && desiredSegmentLengthMet) {
        resetMaxAndMinHoldResources();
    }
}

void SpectrumEstimator::computeSegmentPart(std::vector<double>& out, const SegmentPart& part) {
    addDataToFFTBuffer(part);
    transform.execute(inputPlace(part, part.first), part.end - part.first, inputSegment(part.segment));
    if (rowsAreInAverage) {
        computeAveragedPSD(part);
    } else {
        computePSD(out, part);
        if (part.averageWeight != 0.0) {
            computeExponentialAverage(out, part);
        }
    }
    if (isAnyHoldTraceOn() && showSpectrum) {
        computeMaxAndMinHoldTracePSD(out, part);
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

void SpectrumEstimator::finishFrame(bool ready, std::size_t newSegments) {
    if (desiredSegmentLengthMet) {
        metaData.numAdditionalSamples = 0;
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

/// Windows the segment. While the bank fills, a hybrid engine shows Welch spectra over what the bank gave.
void SpectrumEstimator::addDataToFFTBuffer(const SegmentPart& part) {
    if (isPlainFilterbank()) {
        return;
    }
    if (isZoomInUse()) {
        addZoomFFTWindowedDataToFFTBuffer(part);
    } else {
        addWindowedDataToFFTBuffer(part);
    }
}

/// What the segment or the window does not reach is zero.
void SpectrumEstimator::addWindowedDataToFFTBuffer(const SegmentPart& part) {
    const std::size_t wanted = std::min({transientSegmentLength, actualFFTLength, windowData.size()});
    for (std::size_t channel = part.first; channel < part.end; ++channel) {
        double* in = transform.input(inputPlace(part, channel), inputSegment(part.segment));
        std::size_t available = 0;
        const double* samples = segmentSamples(getChannelBufferIdx(part.signal, channel), part.segment, 1, available);
        const std::size_t count = std::min(wanted, available);
        if (count != 0 && spectrumBuffer->holdsComplexSamples()) {
            vectormath::windowComplex(samples, windowData.data(), in, count);
        } else if (count != 0) {
            vectormath::windowReal(samples, windowData.data(), in, count);
        }
        std::fill(in + 2 * count, in + 2 * actualFFTLength, 0.0);
    }
}

/// The samples of some segments of a channel, the parts of complex ones in turn, and how many of those wanted are
/// there.
const double* SpectrumEstimator::segmentSamples(const std::size_t& bufferIndex, std::size_t segment,
                                                std::size_t segments, std::size_t& available) const {
    const std::size_t L = transientSegmentLength;
    if (segmentsInFrame.data != nullptr) {
        available = segments * L;
        const std::size_t hop = L - spectrumBuffer->getNumOverlapSamples();
        return segmentsInFrame.data + bufferIndex * segmentsInFrame.frameSize + segmentsInFrame.first + segment * hop;
    }
    const std::size_t held = spectrumBuffer->size(bufferIndex);
    const std::size_t offset = std::min(segment * L, held);
    available = std::min(segments * L, held - offset);
    if (spectrumBuffer->holdsComplexSamples()) {
        return reinterpret_cast<const double*>(spectrumBuffer->run<std::complex<double>>(bufferIndex) + offset);
    }
    return spectrumBuffer->run<double>(bufferIndex) + offset;
}

void SpectrumEstimator::computePSD(std::vector<double>& out, const SegmentPart& part) {
    if (isTwoSidedSpectrum() && !propertyChanged) {
        computeTwoSidedPSD(out, part);
    } else {
        computeOneSidedPSD(out, part);
    }
}

/// Bins in the order of the grid: negative frequencies first, and for an even length the one at +Fs' / 2 last.
void SpectrumEstimator::computeTwoSidedPSD(std::vector<double>& out, const SegmentPart& part) {
    const std::size_t N = actualFFTLength;
    const std::size_t zeroHertz = (N - 1) / 2;
    const double scale = getSpectrumScaleValue();
    const bool trimmed = isFrequencyVectorTrimmed();
    if (trimmed) {
        rowScratch.resize(N);
    }
    for (std::size_t channel = part.first; channel < part.end; ++channel) {
        const double* bins = transform.output(channel - part.first);
        double* const outRow = out.data() + getOutputDataIdx(channel, part.segment);
        double* const row = trimmed ? rowScratch.data() : outRow;
        vectormath::scaledPower(bins, scale, row + zeroHertz, N - zeroHertz);
        vectormath::scaledPower(bins + 2 * (N - zeroHertz), scale, row, zeroHertz);
        if (trimmed) {
            const std::size_t start = std::min(frequencyVectorRange[0], N - 1);
            const std::size_t count = std::min(spectrumLength, N - start);
            std::copy_n(row + start, count, outRow);
            std::fill(outRow + count, outRow + spectrumLength, row[N - 1]);
        }
    }
}

/// Bins that stand for two, the positive and the negative frequency, count double.
void SpectrumEstimator::computeOneSidedPSD(std::vector<double>& out, const SegmentPart& part) {
    const bool even = actualFFTLength % 2 == 0;
    const std::size_t lastBin = oneSidedLength() - 1;
    const std::size_t start = std::min(frequencyRangeStart(), lastBin);
    const std::size_t count = std::min(spectrumLength, lastBin + 1 - start);
    const double scale = getSpectrumScaleValue();
    for (std::size_t channel = part.first; channel < part.end; ++channel) {
        const double* bins = transform.output(channel - part.first);
        double* const row = out.data() + getOutputDataIdx(channel, part.segment);
        vectormath::scaledPower(bins + 2 * start, scale * 2.0, row, count);
        for (const std::size_t single : {std::size_t{0}, spectrumLength - 1}) {
            if (isDCOrNyquist(single, even) && single >= start && single < start + count) {
                vectormath::scaledPower(bins + 2 * single, scale, row + (single - start), 1);
            }
        }
        std::fill(row + count, row + spectrumLength, row[count - 1]);
    }
}

/// The bin of the spectrum's last point counts as Nyquist by its number alone, also where the spectrum is only a part
/// of the band and that bin lies inside it or outside. That is meant.
bool SpectrumEstimator::isDCOrNyquist(std::size_t k, const bool& isEvenLength) const {
    return k == 0 || (isEvenLength && k == spectrumLength - 1);
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
    if (signal < 0 || signal >= numSignals) {
        return metaData;
    }
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
