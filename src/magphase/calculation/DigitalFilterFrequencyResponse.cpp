#include "DigitalFilterFrequencyResponse.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <vector>

#include "UnitCirclePoint.h"
#include "UnitCirclePolynomial.h"

namespace dspwavedecks {

namespace {

using Extended = long double;

/// sum over m of c[m] * conj(z)^m by Horner's rule.
std::complex<Extended> evaluate(const std::vector<double>& c, std::complex<Extended> z) {
    Extended real = 0;
    Extended imag = 0;
    for (std::size_t m = c.size(); m-- > 0;) {
        const Extended previous = real;
        real = real * z.real() + imag * z.imag() + static_cast<Extended>(c[m]);
        imag = imag * z.real() - previous * z.imag();
    }
    return {real, imag};
}

/// Points evenly spaced from `first` to `last`, both exact, also where the difference of the two overflows.
void fillLinearly(std::vector<double>& points, double first, double last) {
    const double difference = last - first;
    const auto steps = static_cast<double>(points.size()) - 1.0;
    const bool isDifferenceFinite = std::isfinite(difference);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto step = static_cast<double>(i);
        points[i] = isDifferenceFinite ? first + step * difference / steps
                                       : first + step * (last / steps) - step * (first / steps);
    }
    if (!points.empty()) {
        points.front() = first;
        points.back() = last;
    }
}

bool hasCoefficients(const std::vector<std::vector<double>>& lists, unsigned long signal) {
    return signal < lists.size() && !lists[signal].empty();
}

}  // namespace

void DigitalFilterFrequencyResponse::setFFTLength(const unsigned long& length) {
    fftLength = length;
    isGridStale = true;
}

void DigitalFilterFrequencyResponse::setSampleRate(const double& rate) {
    sampleRate = rate;
    isGridStale = true;
}

void DigitalFilterFrequencyResponse::setFrequencyRange(const std::vector<double>& range) {
    frequencyRange = range;
    isGridStale = true;
}

void DigitalFilterFrequencyResponse::computeFrequencyVector() {
    if (!isGridStale) {
        return;
    }
    frequencyVector.resize(fftLength);
    if (frequencyRange.size() < 2) {
        std::fill(frequencyVector.begin(), frequencyVector.end(), std::numeric_limits<double>::quiet_NaN());
    } else if (frequencyRange[0] == frequencyRange[1]) {
        std::fill(frequencyVector.begin(), frequencyVector.end(), frequencyRange[0]);
    } else {
        fillLinearly(frequencyVector, frequencyRange[0], frequencyRange[1]);
    }
    computeUnitCircle();
    isGridStale = false;
}

void DigitalFilterFrequencyResponse::computeUnitCircle() {
    unitCircleReal.resize(fftLength);
    unitCircleImag.resize(fftLength);
    for (unsigned long k = 0; k < fftLength; ++k) {
        const std::complex<double> z = roundedPointOnUnitCircle(frequencyVector[k], sampleRate);
        unitCircleReal[k] = z.real();
        unitCircleImag[k] = z.imag();
    }
}

void DigitalFilterFrequencyResponse::freqz(std::vector<std::vector<double>>& numerators,
                                           std::vector<std::vector<double>>& denominators, std::vector<double>& out) {
    if (!hasCoefficients(numerators, 0) || denominators.empty()) {
        return;
    }
    computeFrequencyVector();
    out.resize(3 * frequencyVector.size());
    std::copy(frequencyVector.begin(), frequencyVector.end(), out.begin());
    if (denominators[0].size() == 1) {
        firfreqz(numerators, denominators, 0, out);
    } else {
        iirfreqz(numerators, denominators, 0, out);
    }
}

void DigitalFilterFrequencyResponse::firfreqz(std::vector<std::vector<double>>& numerators,
                                              std::vector<std::vector<double>>& /*denominators*/,
                                              const unsigned long& signal, std::vector<double>& out) {
    if (!hasCoefficients(numerators, signal)) {
        return;
    }
    const std::size_t points = frequencyVector.size();
    out.resize(3 * points);
    const std::vector<double>& numerator = numerators[signal];
    evaluateOnUnitCircle(numerator.data(), numerator.size(), unitCircleReal.data(), unitCircleImag.data(), points,
                         out.data() + points, out.data() + 2 * points);
}

void DigitalFilterFrequencyResponse::iirfreqz(std::vector<std::vector<double>>& numerators,
                                              std::vector<std::vector<double>>& denominators,
                                              const unsigned long& signal, std::vector<double>& out) {
    if (!hasCoefficients(numerators, signal) || signal >= denominators.size()) {
        return;
    }
    std::vector<double>& numerator = numerators[signal];
    std::vector<double>& denominator = denominators[signal];
    const std::size_t length = std::max(numerator.size(), denominator.size());
    numerator.resize(length);
    denominator.resize(length);
    const std::size_t points = frequencyVector.size();
    out.resize(3 * points);
    for (std::size_t k = 0; k < points; ++k) {
        // In more digits than a double has: beside a pole the denominator is what cancellation leaves of its terms.
        const auto z = pointOnUnitCircle(frequencyVector[k], sampleRate);
        const auto h = std::complex<double>(evaluate(numerator, z) / evaluate(denominator, z));
        out[points + k] = h.real();
        out[2 * points + k] = h.imag();
    }
}

}  // namespace dspwavedecks
