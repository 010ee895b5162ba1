#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

namespace {

/// One channel's part of the bank: a commutator that hands the samples to the branches 0, B - 1, B - 2, ..., 1, 0, ...
/// of a filter whose branches hold `taps` samples each, newest first.
template <class Sample>
struct PolyphaseBranches {
    const double* filter;  ///< [bands * taps]
    Sample* lines;         ///< [bands * taps]
    Sample* accumulators;  ///< [bands * 2] what is complete, and what is under way
    std::size_t taps;
    std::size_t bands;

    /// Band 0 takes the last sample of one block of the bank; all other bands begin the next one. Bands come round
    /// again when there are more samples than bands; they all belong to the block under way then.
    void analyse(const Sample* samples, std::size_t n) const {
        if (taps == 0) {
            return;
        }
        std::size_t branch = 0;
        std::size_t band = 0;
        std::size_t slot = 0;
        for (std::size_t i = 0; i < n; ++i) {
            Sample* line = lines + branch * taps;
            line[0] = samples[i];
            accumulators[2 * band + slot] += dot(filter + branch * taps, line);
            std::copy_backward(line, line + (taps - 1), line + taps);
            if (band == 0) {
                slot = 1;
            }
            branch = bands - 1 - band;
            band = band + 1 == bands ? 0 : band + 1;
        }
    }

    Sample dot(const double* coefficients, const Sample* line) const {
        Sample sum{};
        for (std::size_t t = 0; t < taps; ++t) {
            sum += coefficients[t] * line[t];
        }
        return sum;
    }
};

/// Hands the complete slots of a signal's bands to the transform; what is under way takes their place.
template <class Sample>
void moveCompleteSlots(Sample* accumulators, std::complex<double>* in, std::size_t bands) {
    for (std::size_t band = 0; band < bands; ++band) {
        in[band] = accumulators[2 * band];
        accumulators[2 * band] = accumulators[2 * band + 1];
        accumulators[2 * band + 1] = Sample{};
    }
}

}  // namespace

void SpectrumEstimator::designMultirateFIR(std::vector<double>& h, const std::size_t& factor,
                                           const std::size_t& halfLength, const double& attenuation) const {
    std::vector<double> w;
    if (factor != 0 && halfLength > w.max_size() / 4 / factor) {
        throw std::length_error("A filter of that many taps has no store");
    }
    const std::size_t taps = 2 * halfLength * factor;
    kaiser(w, taps + 1, attenuation);  // an odd length has its peak on a tap; the last element is not used
    h.resize(taps);
    const auto centre = static_cast<double>(halfLength * factor);
    for (std::size_t n = 0; n < taps; ++n) {
        const double x = (static_cast<double>(n) - centre) / static_cast<double>(factor) * std::numbers::pi;
        constexpr double smallAngle = 0.00040283203125;
        const double sinc = std::abs(x) >= smallAngle ? std::sin(x) / x : 1.0 - x * x / 6.0;
        h[n % factor * 2 * halfLength + n / factor] = sinc * w[n] / static_cast<double>(factor);
    }
}

bool SpectrumEstimator::isFilterbankInTransientState() const {
    return !isFrequencyInputDomain() && isFilterbankMode() && totalNumSamplesProcessed <= 2 * firGroupDelay;
}

bool SpectrumEstimator::isFilterbankInHybridMode() const {
    return useWelchForFilterBankTransient && isFilterbankInTransientState();
}

bool SpectrumEstimator::isFilterbankInSteadyState() const {
    return !isFrequencyInputDomain() && isFilterbankMode() &&
           totalNumSamplesProcessed >= actualSegmentLength + 2 * firGroupDelay;
}

bool SpectrumEstimator::isFilterbankInSteadyStateStart() const {
    return isFilterbankInSteadyState() && totalNumSamplesProcessed == actualSegmentLength + 2 * firGroupDelay;
}

void SpectrumEstimator::computeFIRFilterGroupDelay() {
    firGroupDelay = (numTapsPerBand * actualSegmentLength) >> 1U;
}

void SpectrumEstimator::computeFilterbankLowpassCoefficients() {
    designMultirateFIR(filterbankPolyphaseMatrix, actualFFTLength, numTapsPerBand / 2, firStopbandAttenuation);
    // An odd number of taps leaves the prototype one tap a band short: the rest of the store is zero, and the branches
    // are read at a stride that is not theirs. It works without a fault, but the bands lose their shape.
    filterbankPolyphaseMatrix.resize(numTapsPerBand * actualFFTLength, 0.0);
}

void SpectrumEstimator::allocateFilterbankResources() {
    computeFilterbankLowpassCoefficients();
    computeFIRFilterGroupDelay();
    allocateFIRPolyphaseAnalysisResources();
}

/// Lines and accumulators keep what still fits, unless they are marked: the fill goes on over a setup. Whether the
/// kernels are used is decided here, for what they remember is in an order of their own.
void SpectrumEstimator::allocateFIRPolyphaseAnalysisResources() {
    const bool complexSamples = isFilterbankComplex();
    kernelBank.inUse = useHalideForFIRPolyphaseAnalysis && numTapsPerBand != 0;
    const std::size_t plainBands = kernelBank.inUse ? 0 : actualFFTLength * totalNumChannels;
    complexBank.resize(complexSamples ? plainBands : 0, numTapsPerBand);
    realBank.resize(complexSamples ? 0 : plainBands, numTapsPerBand);
    allocateKernelStores(complexSamples);
    if (resetFilterbankStates && !isLocked_) {
        complexBank.reset();
        realBank.reset();
        for (auto& store : kernelBank.delayStores) {
            std::fill(store.begin(), store.end(), 0.0);
        }
    }
}

void SpectrumEstimator::allocateKernelStores(bool complexSamples) {
    const auto kind = complexSamples ? polyphase::SampleKind::complex : polyphase::SampleKind::real;
    if (!kernelBank.inUse || kernelBank.kind != kind || kernelBank.numBands != actualFFTLength ||
        kernelBank.numTaps != numTapsPerBand) {
        kernelBank.delayStores.clear();  // nothing fits a bank of another shape
    }
    if (!kernelBank.inUse) {
        return;
    }
    kernelBank.kind = kind;
    kernelBank.numBands = actualFFTLength;
    kernelBank.numTaps = numTapsPerBand;
    kernelBank.taps.resize(polyphase::tapStoreSize(actualFFTLength, numTapsPerBand));
    polyphase::arrangeTaps(filterbankPolyphaseMatrix.data(), actualFFTLength, numTapsPerBand, kernelBank.taps.data());
    kernelBank.delayStores.resize(totalNumChannels);
    for (auto& store : kernelBank.delayStores) {
        store.resize(polyphase::delayStoreSize(actualFFTLength, numTapsPerBand, kind));
    }
}

/// What the bank filters: segments as they are, or the points of a zoomed one.
const double* SpectrumEstimator::filterbankSamples(const std::size_t& bufferIndex, std::size_t segment,
                                                   std::size_t segments, std::size_t& available) const {
    if (!isZoomInUse()) {
        return segmentSamples(bufferIndex, segment, segments, available);
    }
    available = transientSegmentLength;
    return reinterpret_cast<const double*>(zoomOutput.data() + bufferIndex * actualSegmentLength);
}

void SpectrumEstimator::computeFIRPolyphaseAnalysis(const int& signal, const std::size_t& channels,
                                                    const std::size_t& segment) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t index = getChannelBufferIdx(signal, channel);
        std::size_t count = 0;
        const double* samples = filterbankSamples(index, segment, 1, count);
        if (isFilterbankComplex()) {
            analyse(complexBank, reinterpret_cast<const std::complex<double>*>(samples), count, index);
        } else {
            analyse(realBank, samples, count, index);
        }
    }
}

/// Runs ahead over as many segments as the transform's input has room for, when the first of them is asked for.
void SpectrumEstimator::computeKernelAnalysis(const int& signal, const std::size_t& channels,
                                              const std::size_t& segment) {
    if (inputSegment(segment) != 0) {
        return;
    }
    const std::size_t L = transientSegmentLength;
    const std::size_t group = std::min(transform.segments(), numSegments - segment);
    const polyphase::Bank bank{actualFFTLength, numTapsPerBand, kernelBank.taps.data()};
    const auto width = static_cast<std::size_t>(kernelBank.kind);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t index = getChannelBufferIdx(signal, channel);
        std::size_t available = 0;
        const double* samples = filterbankSamples(index, segment, group, available);
        double* past = kernelBank.delayStores[index].data();
        const std::size_t whole = L == 0 ? 0 : available / L;
        polyphase::analyze(bank, kernelBank.kind, past, samples, L, whole, transform.input(channel),
                           transform.segmentStride());
        // A signal with shorter frames than the first one may end within the group.
        for (std::size_t missing = whole; missing < group; ++missing) {
            const std::size_t rest = missing == whole ? available - whole * L : 0;
            polyphase::analyze(bank, kernelBank.kind, past, samples + whole * L * width, rest, 1,
                               transform.input(channel, missing), transform.segmentStride());
        }
    }
}

template <class Sample>
void SpectrumEstimator::analyse(FilterbankStores<Sample>& bank, const Sample* samples, std::size_t count,
                                std::size_t bufferIndex) const {
    const std::size_t B = actualFFTLength;
    const PolyphaseBranches<Sample> branches{filterbankPolyphaseMatrix.data(),
                                             bank.lines.data() + bufferIndex * B * numTapsPerBand,
                                             bank.accumulators.data() + bufferIndex * 2 * B, numTapsPerBand, B};
    branches.analyse(samples, count);
}

void SpectrumEstimator::addFIRPolyphaseAnalysisDataToFFTBuffer(const int& signal, const std::size_t& channels) {
    if (channels == 0) {
        return;
    }
    auto* in = reinterpret_cast<std::complex<double>*>(transform.input(0));
    const std::size_t first = 2 * actualFFTLength * getChannelBufferIdx(signal, 0);
    const std::size_t bands = actualFFTLength * channels;
    if (isFilterbankComplex()) {
        moveCompleteSlots(complexBank.accumulators.data() + first, in, bands);
    } else {
        moveCompleteSlots(realBank.accumulators.data() + first, in, bands);
    }
}

}  // namespace dspwavedecks
