#include <cmath>
#include <numbers>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

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

void SpectrumEstimator::allocateFilterbankResources() {
    computeFIRFilterGroupDelay();
}

}  // namespace dspwavedecks
