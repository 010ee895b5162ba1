#pragma once

#include <cstddef>
#include <vector>

namespace dspwavedecks {

/// Values of a polynomial with real coefficients at the conjugates of points on the unit circle, by Horner's rule:
///   p[k] = sum over m of c[m] * conj(z[k])^m
/// which for z[k] = exp(j * w[k]) is the Fourier sum of c at the angular frequency w[k].
/// c               [count] coefficients in ascending powers; of none the value is 0
/// zReal, zImag    [points] parts of z
/// real, imag      [points] parts of p; must not overlap the input
/// Each step rounds like one complex multiplication and one addition: the error grows as the root of `count` for
/// typical coefficients, and in proportion to it at worst. O(count * points), no allocation. The instruction set is
/// picked at the first call.
void evaluateOnUnitCircle(const double* c, std::size_t count, const double* zReal, const double* zImag,
                          std::size_t points, double* real, double* imag);

/// The same for one instruction set.
struct UnitCircleKernel {
    const char* instructionSet;
    void (*evaluate)(const double* c, std::size_t count, const double* zReal, const double* zImag, std::size_t points,
                     double* real, double* imag);
};

/// The kernels that this machine can run, the widest last: that one is in use.
std::vector<UnitCircleKernel> supportedUnitCircleKernels();

}  // namespace dspwavedecks
