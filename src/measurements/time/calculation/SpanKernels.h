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

/// The levels of an edge by which samples are compared, for a rising one. A falling edge is mirrored: sign is -1, and
/// the levels are negated.
struct EdgeLevels {
    double sign;
    double state;  ///< samples below lie in the state that is left
    double start;  ///< samples below lie before the crossing at which the duration begins
    double mid;
    double end;  ///< samples above lie behind the crossing at which the duration ends
};

/// How samples lie to the levels of an edge, sample 0 in the lowest bit. A NaN has no bit set.
struct EdgeBits {
    std::uint64_t inState, beforeStart, notPastMid, pastMid, pastEnd;
};

/// Vectorised passes over a span, for the instructions that the machine has.
struct SpanKernels {
    /// Extremes of x [n].
    ScannedExtremes (*scanExtremes)(const double* x, std::size_t n);

    /// The same for n <= edgeSamples where x [edgeSamples] may be read, without a loop that depends on n: of short
    /// stretches no length can be foreseen, and it is known late.
    ScannedExtremes (*scanFew)(const double* x, std::size_t n);

    /// Whether no value of x [n] is less than the one before it, and none is NaN (but for a single one).
    bool (*neverFalls)(const double* x, std::size_t n);

    /// First of x [n] above, or below, a bound; n if there is none. NaN is neither.
    std::size_t (*findAbove)(const double* x, std::size_t n, double bound);
    std::size_t (*findBelow)(const double* x, std::size_t n, double bound);

    /// Compares x [edgeSamples] with the levels of an edge; without the first half where some of the second lie in the
    /// state.
    EdgeBits (*compareEdge)(const double* x, const EdgeLevels& levels);

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
