#pragma once

#include <cstddef>

namespace dspwavedecks {

/// Index of the first largest of n values by strict comparison, 0 for none: NaN never wins, unless it comes first, when
/// nothing exceeds it. The answer is that of std::max_element, in a fraction of its time.
std::size_t firstLargest(const double* x, std::size_t n);

}  // namespace dspwavedecks
