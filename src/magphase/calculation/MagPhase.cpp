#include "MagPhase.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

namespace dspwavedecks {

namespace {

void realMagPhase(const double* in, double* magnitude, double* phase, std::size_t count, double degreesOfPi) {
    for (std::size_t i = 0; i < count; ++i) {
        const double x = in[i];
        magnitude[i] = std::fabs(x);
        phase[i] = x < 0.0 ? degreesOfPi : (x >= 0.0 ? 0.0 : x);
    }
}

void complexMagPhase(const double* real, const double* imaginary, double* magnitude, double* phase, std::size_t count,
                     double pi) {
    for (std::size_t i = 0; i < count; ++i) {
        const double re = real[i];
        const double im = imaginary[i];
        magnitude[i] = std::sqrt(re * re + im * im + 0.0);
        phase[i] = std::atan2(im, re) * 180.0 / pi;
    }
}

}  // namespace

MagPhase::MagPhase(const unsigned long& numChannels, const bool& isInputComplex)
    : numChannels(numChannels), isInputComplex(isInputComplex) {}

void MagPhase::computeMagPhase(const double* in, std::vector<double>& out, const unsigned long& n) {
    const std::size_t valueCount = isInputComplex ? n * (numChannels / 2) : n * numChannels;
    assert(out.size() >= n + 2 * valueCount);
    std::copy_n(in, n, out.begin());
    double* const magnitude = out.data() + n;
    double* const phase = magnitude + valueCount;
    if (isInputComplex) {
        complexMagPhase(in + n, in + n + valueCount, magnitude, phase, valueCount, pi);
    } else {
        realMagPhase(in + n, magnitude, phase, valueCount, pi * 180.0 / pi);
    }
}

}  // namespace dspwavedecks
