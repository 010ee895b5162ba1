#pragma once

#include <cstddef>

#include "InstructionSet.h"

namespace deckutil {

/// For each of n samples the time at which the straight line from the sample before reaches the level (crossingTime());
/// without meaning where it does not. A sample must stand before them, at times[-1] and values[-1].
///   crossings  [n] s
using CrossingTimes = void (*)(const double* times, const double* values, std::size_t n, double level,
                               double* crossings);

/// For the machine at hand.
CrossingTimes crossingTimes();

/// For instructions that the machine must support.
CrossingTimes crossingTimes(dspwavedecks::InstructionSet set);

}  // namespace deckutil
