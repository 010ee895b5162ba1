#pragma once

#include <cstddef>
#include <vector>

namespace dspwavedecks {

/// Median of the positive ones of n values: the mean of the two in the middle, sorted ranks (c - 1) / 2 and c / 2 of c.
/// x        [n]; zeros, negative values and NaN are passed over, infinity is a value like any other
/// scratch  working memory
/// returns  the median; 0 if no value is positive
///
/// The middle is closed in by counting what lies below a trial value: positive doubles sort as their bit patterns do,
/// and ranks are nearly linear in those over a short way. A count is a short vectorised pass, where a selection, which
/// cannot foresee its branches, takes five times as long as all passes for the few thousand bins of a spectrum.
double medianOfPositive(const double* x, std::size_t n, std::vector<double>& scratch);

}  // namespace dspwavedecks
