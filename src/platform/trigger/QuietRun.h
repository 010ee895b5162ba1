#pragma once

#include <cstddef>

#include "InstructionSet.h"

namespace deckutil {

/// Within which samples change nothing: values strictly between the fences, times that don't fall and stay below until.
struct QuietBounds {
    double low, high;  ///< signal's unit
    double until;      ///< s
};

/// Least and greatest value seen so far.
struct ValueRange {
    double low, high;
};

/// Number of samples at the begin of times [n] and values [n] that lie in the bounds, the first time being no less than
/// previousTime. A NaN lies in no bounds. The range takes in their values.
using QuietRun = std::size_t (*)(const double* times, const double* values, std::size_t n, double previousTime,
                                 const QuietBounds& bounds, ValueRange& range);

/// For the machine at hand.
QuietRun quietRun();

/// For instructions that the machine must support.
QuietRun quietRun(dspwavedecks::InstructionSet set);

}  // namespace deckutil
