#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

namespace dspwavedecks {

/// The number without its fraction, for counts that arrive as doubles; saturates at the ends of the integer type.
/// NaN gives 0.
template <class Integer>
Integer truncateTo(double value) {
    static_assert(std::is_integral_v<Integer>);
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value)) {
        return 0;
    }
    // 2^digits is the first double above the largest integer, -2^digits the smallest of a signed type.
    const double bound = std::ldexp(1.0, Limits::digits);
    if (value >= bound) {
        return Limits::max();
    }
    if (value < static_cast<double>(Limits::min())) {
        return Limits::min();
    }
    return static_cast<Integer>(value);
}

}  // namespace dspwavedecks
