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

/// Samples that are compared together around an edge.
inline constexpr std::size_t edgeSamples = 16;

/// How samples lie to the levels that an edge crosses, sample 0 in the lowest bit.
struct EdgeBits {
    std::uint64_t isOrdered;  ///< no NaN
    std::uint64_t belowMid, aboveMid, belowStart, belowEnd, aboveEnd;
};

/// Vectorised passes over a span, for the instructions that the machine has.
struct SpanKernels {
    /// Extremes of x [n].
    ScannedExtremes (*scanExtremes)(const double* x, std::size_t n);

    /// The same for n <= edgeSamples where x [edgeSamples] may be read, without a branch that depends on n: of short
    /// stretches no length can be foreseen, and it is known late.
    ScannedExtremes (*scanFew)(const double* x, std::size_t n);

    /// Whether no value of x [n] is less than the one before it, and none is NaN (but for a single one).
    bool (*neverFalls)(const double* x, std::size_t n);

    /// First of x [n] above, or below, a bound; n if there is none. NaN is neither.
    std::size_t (*findAbove)(const double* x, std::size_t n, double bound);
    std::size_t (*findBelow)(const double* x, std::size_t n, double bound);

    /// Compares x [edgeSamples] with the levels of an edge.
    EdgeBits (*compareEdge)(const double* x, double mid, double start, double end);

    /// Bin of each value of x [n], 0 to 99:
    ///   ceil((x - minimum) * 100 / divisor) - 1, capped at 99; 0 where that is negative or not finite
    /// so that a NaN and the minimum itself lie in bin 0. The order of operations decides bins and is meant.
    void (*findHistogramBins)(const double* x, std::size_t n, double minimum, double divisor, std::uint64_t* bins);

    /// The same bins with few divisions, for values from the minimum to the minimum plus the divisor, where the divisor
    /// and 100 / divisor are normal numbers and 100 * divisor is finite. A product tells the bin but where rounding
    /// decides.
    void (*findHistogramBinsInRange)(const double* x, std::size_t n, double minimum, double divisor,
                                     std::uint64_t* bins);
};

/// The kernels for the machine at hand.
const SpanKernels& spanKernels();

/// The kernels for instructions that the machine must support.
const SpanKernels& spanKernels(InstructionSet set);

}  // namespace dspwavedecks
