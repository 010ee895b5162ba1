#pragma once

namespace dspwavedecks {

/// Which sample wins a tie for the maximum. The first of equal minima wins in both orders.
enum MeasurementMinMaxSortOrder {
    MinMaxLastMaximum = 0,   ///< one pairwise scan: the last of equal maxima wins
    MinMaxFirstMaximum = 1,  ///< two plain passes: the first of equal maxima wins
};

}  // namespace dspwavedecks
