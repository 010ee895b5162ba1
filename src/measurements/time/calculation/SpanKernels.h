#pragma once

#include <cstddef>
#include <cstdint>

#include "InstructionSet.h"

namespace dspwavedecks {

inline constexpr std::size_t histogramBinCount = 100;

/// Least and greatest of values that are not NaN, and whether there was one that is. Without values plus and minus
/// infinity.
struct ScannedExtremes {
    double minimum;
    double maximum;
    bool hasNaN;
};

/// Vectorised passes over a span, for the instructions that the machine has.
struct SpanKernels {
    /// Extremes of x [n].
    ScannedExtremes (*scanExtremes)(const double* x, std::size_t n);

    /// Whether no value of x [n] is less than the one before it, and none is NaN (but for a single one).
    bool (*neverFalls)(const double* x, std::size_t n);

    /// First of x [n] above, or below, a bound; n if there is none. NaN is neither.
    std::size_t (*findAbove)(const double* x, std::size_t n, double bound);
    std::size_t (*findBelow)(const double* x, std::size_t n, double bound);

    /// Bin of each value of x [n], 0 to 99:
    ///   ceil((x - minimum) * 100 / divisor) - 1, capped at 99; 0 where that is negative or not finite
    /// so that a NaN and the minimum itself lie in bin 0. The order of operations decides bins and is meant.
    void (*findHistogramBins)(const double* x, std::size_t n, double minimum, double divisor, std::uint64_t* bins);

    /// The same bins without a division, binsPerUnit = 100 / divisor, for values from the minimum to the minimum plus
    /// the divisor. Returns false where a value lies so near to the border of two bins that rounding decides: then
    /// nothing is known. n must be a multiple of 8.
    bool (*guessHistogramBins)(const double* x, std::size_t n, double minimum, double binsPerUnit, std::uint64_t* bins);
};

/// The kernels for the machine at hand.
const SpanKernels& spanKernels();

/// The kernels for instructions that the machine must support.
const SpanKernels& spanKernels(InstructionSet set);

}  // namespace dspwavedecks
