#pragma once

#include <complex>

namespace dspwavedecks {

/// exp(j * 2 * pi * frequency / sampleRate), with as many digits as the platform's long double has. The angle is as
/// good at high frequencies as at low ones; NaN for a frequency or rate that gives none.
std::complex<long double> pointOnUnitCircle(double frequency, double sampleRate);

/// The same in doubles, each part within 0.75 units in the last place: the m-th power of a point has m times its error,
/// so the part of the angle that a double drops is put back before the one rounding that counts. Several times faster
/// than the functions of the standard library for long double.
std::complex<double> roundedPointOnUnitCircle(double frequency, double sampleRate);

}  // namespace dspwavedecks
