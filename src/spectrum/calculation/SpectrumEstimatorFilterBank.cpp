#include <algorithm>
#include <cmath>
#include <numbers>

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
    const std::size_t taps = 2 * halfLength * factor;
    std::vector<double> w;
    kaiser(w, taps + 1, attenuation);  // an odd length has its peak on a tap; the last element is not used
    h.resize(taps);
    for (std::size_t n = 0; n < taps; ++n) {
        const double x =
            (static_cast<double>(n) - static_cast<double>(taps / 2)) / static_cast<double>(factor) * std::numbers::pi;
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

/// Lines and accumulators keep what still fits, unless they are marked: the fill goes on over a setup.
void SpectrumEstimator::allocateFIRPolyphaseAnalysisResources() {
    const std::size_t bands = actualFFTLength * totalNumChannels;
    const bool complexStore = isFilterbankComplex();
    complexBank.lines.resize(complexStore ? bands * numTapsPerBand : 0);
    complexBank.accumulators.resize(complexStore ? 2 * bands : 0);
    realBank.lines.resize(complexStore ? 0 : bands * numTapsPerBand);
    realBank.accumulators.resize(complexStore ? 0 : 2 * bands);
    if (resetFilterbankStates && !isLocked_) {
        complexBank.reset();
        realBank.reset();
    }
}

void SpectrumEstimator::computeFIRPolyphaseAnalysis(const int& signal, const std::size_t& channels,
                                                    const std::size_t& segment) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t index = getChannelBufferIdx(signal, channel);
        if (isZoomInUse()) {
            analyse(complexBank, zoomOutput.data() + index * actualSegmentLength, transientSegmentLength, index);
            continue;
        }
        const std::size_t offset = segment * transientSegmentLength;
        const std::size_t held = spectrumBuffer->size(index);
        const std::size_t count = std::min(transientSegmentLength, held - std::min(offset, held));
        if (isFilterbankComplex()) {
            analyse(complexBank, spectrumBuffer->run<std::complex<double>>(index) + offset, count, index);
        } else {
            analyse(realBank, spectrumBuffer->run<double>(index) + offset, count, index);
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
