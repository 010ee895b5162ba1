#pragma once

#include <cstddef>
#include <limits>

/// Loops over arrays of doubles that run for every bin or sample of every update, vectorised for the machine at hand.
///
/// The arrays may lie at any address and have any length. A destination may be its source itself where both have the
/// same length, and must not overlap another array otherwise. Where a formula is made of sums, products, quotients and
/// roots, the result is that of the plain double formula in the order written, bit for bit, on every machine.
/// Logarithms and powers of ten stay within the error that is stated, and differ in the last place between machines
/// of different instruction sets.
namespace dspwavedecks::vectormath {

/// Added to a power or an amplitude before its logarithm is taken, so that zero gives a very low level that is finite.
inline constexpr double smallestPower = std::numeric_limits<double>::denorm_min();

/// decibels[i] = offset + 10 * log10(power[i] + bias)
/// power     [n] linear; 0 with a bias of 0 gives -infinity, less than 0 NaN, infinity and NaN themselves
/// decibels  [n]
/// Error of 10 * log10: at most 2e-14 dB or one unit in the last place of the result, whichever is larger, over all of
/// the double range, denormal numbers included.
void toDecibels(const double* power, double* decibels, std::size_t n, double offset, double bias = smallestPower);

/// decibels[i] = min(20 * log10(sqrt(power[i]) / fullScale + bias) + offset, ceiling), NaN staying NaN
/// power      [n] linear, in the square of the unit of `fullScale`
/// fullScale  amplitude that reads 0 dB
/// Error of 20 * log10: twice that of `toDecibels`.
void rootToDecibels(const double* power, double* decibels, std::size_t n, double fullScale, double offset,
                    double ceiling = std::numeric_limits<double>::infinity(), double bias = smallestPower);

/// power[i] = 10^((decibels[i] - offset) / 10)
/// -infinity gives 0, and what is too large for a double infinity. Error: at most 2 units in the last place of the
/// result for the exponent as rounded to double.
void fromDecibels(const double* decibels, double* power, std::size_t n, double offset);

/// power[i] = (10^((decibels[i] - offset) / 20))^2 / resistance
/// Error: at most 5 units in the last place, from that of the power of ten.
void squareFromDecibels(const double* decibels, double* power, std::size_t n, double offset, double resistance);

/// roots[i] = sqrt(power[i])
void squareRoots(const double* power, double* roots, std::size_t n);

/// spectrum[2 i] = samples[i] * window[i], spectrum[2 i + 1] = 0: a windowed real segment as complex samples.
/// samples, window [n]; spectrum [2 n], which overlaps neither
void windowReal(const double* samples, const double* window, double* spectrum, std::size_t n);

/// spectrum[2 i] = samples[2 i] * window[i], and the same for 2 i + 1: a windowed complex segment.
/// samples [2 n], real and imaginary parts in turn; window [n]; spectrum [2 n]
void windowComplex(const double* samples, const double* window, double* spectrum, std::size_t n);

/// power[i] = scale * (spectrum[2 i]^2 + spectrum[2 i + 1]^2)
/// spectrum [2 n], real and imaginary parts in turn; power [n], which does not overlap it
void scaledPower(const double* spectrum, double scale, double* power, std::size_t n);

/// One step of the recursive average of a row of bins, with y = row[i] and m = average[i]:
///   row[i] = average[i] = weight * y + (1 - weight) * m     if y is finite or `useNonFinite`
///   row[i] = m                                              otherwise, average[i] stays
/// Returns whether any y was infinite or NaN.
bool averageExponentially(double* row, double* average, std::size_t n, double weight, bool useNonFinite);

/// `scaledPower` and `averageExponentially` in one pass, without a row between them: the average takes
/// y = scale * (spectrum[2 i]^2 + spectrum[2 i + 1]^2), bit for bit as by the two calls, in half of their time.
/// spectrum [2 n], real and imaginary parts in turn; average [n], which does not overlap it
bool averagePower(const double* spectrum, double scale, double* average, std::size_t n, double weight,
                  bool useNonFinite);

/// hold[i] = row[i] < hold[i] ? hold[i] : row[i]. A NaN in the row takes the place of what was held.
void holdMaximum(const double* row, double* hold, std::size_t n);

/// hold[i] = hold[i] < row[i] ? hold[i] : row[i]. A NaN in the row takes the place of what was held.
void holdMinimum(const double* row, double* hold, std::size_t n);

}  // namespace dspwavedecks::vectormath
