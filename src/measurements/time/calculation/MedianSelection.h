#pragma once

#include <cstddef>
#include <vector>

namespace dspwavedecks {

/// Median of a stretch: (v[(N - 1) / 2] + v[N / 2]) * 0.5 of the sorted samples v, by selection.
/// data     [count] samples, count >= 1; left as it is
/// scratch  working memory, grown to count at most, its contents meaningless before and after
///
/// The result has the bits of two nth-element selections over a copy. Long stretches are not copied: a random sample
/// of them gives a narrow bracket that holds the median almost surely, one pass counts what lies below and collects
/// what lies inside, and the selection runs over that part. Where the bracket misses, where a NaN breaks the order, or
/// where zeros of both signs compete, the plain selection decides.
double selectMedian(const double* data, std::size_t count, std::vector<double>& scratch);

}  // namespace dspwavedecks
