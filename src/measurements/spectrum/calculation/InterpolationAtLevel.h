#pragma once

#include <cstddef>

namespace dspwavedecks {

/// Position at which a curve first passes a level, on the straight line between the two points around it:
///   positions[k-1] + (positions[k] - positions[k-1]) * (level - levels[k-1]) / (levels[k] - levels[k-1])
/// with the first k for which levels[k] > level.
/// levels, positions  [n]
/// returns the position; NaN if no point lies above the level, or the first one does already.
double interpolateAtLevel(const double* levels, const double* positions, std::size_t n, double level);

/// The same for levels in ascending order, in log n steps.
double interpolateAtAscendingLevel(const double* levels, const double* positions, std::size_t n, double level);

}  // namespace dspwavedecks
