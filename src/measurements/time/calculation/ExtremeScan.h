#pragma once

#include <cstddef>

#include "MeasurementMinMaxSortOrder.h"

namespace dspwavedecks {

/// Positions of one minimum and one maximum.
struct ExtremePositions {
    std::size_t minimum = 0;
    std::size_t maximum = 0;
};

/// Positions of the minimum and the maximum of a stretch, ties decided by the order.
/// data  [count] samples, count >= 1
///
/// NaN has no special treatment: the answer is that of the plain scans, std::minmax_element for MinMaxLastMaximum and
/// std::min_element with std::max_element for MinMaxFirstMaximum, whose comparisons with a NaN are all false. Stretches
/// without a NaN take a vectorised pass for the two values and short searches for their places.
ExtremePositions findExtremes(const double* data, std::size_t count, MeasurementMinMaxSortOrder order);

/// The values at the positions that findExtremes gives for MinMaxLastMaximum.
struct ExtremeValues {
    double minimum = 0.0;
    double maximum = 0.0;
    bool hasNaN = false;  ///< then values may lie outside the two
};
ExtremeValues findExtremeValues(const double* data, std::size_t count);

}  // namespace dspwavedecks
