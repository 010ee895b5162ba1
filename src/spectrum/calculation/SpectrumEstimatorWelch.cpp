#include <algorithm>
#include <complex>

#include "SpectrumEstimator.h"
#include "VectorMath.h"

namespace dspwavedecks {

void SpectrumEstimator::setupBuffer() {
    // Samples that are to be kept can only be those of the same channels.
    flushSpectrumBuffer = flushSpectrumBuffer || !spectrumBuffer->isMadeFor(totalNumChannels, isAnyInputComplex());
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

}  // namespace dspwavedecks
