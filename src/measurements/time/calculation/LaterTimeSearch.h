#pragma once

#include <algorithm>
#include <cstddef>

#include "BilevelWorkingSet.h"

namespace dspwavedecks {

/// Searches for the first time of a span that is later than a given one. Where times never fall it looks first where
/// even steps would have it.
class LaterTimeSearch {
public:
    /// timesRise  whether no time that the searches meet falls
    LaterTimeSearch(const BilevelSpan& searchedSpan, bool timesRise);

    /// First index from low up whose time is later, or `high` if none lies below it.
    /// anchor  an index whose time is near
    std::ptrdiff_t between(std::ptrdiff_t low, std::ptrdiff_t high, double time, std::ptrdiff_t anchor) const {
        if (low >= high) {
            return high;
        }
        if (!hasRisingTimes) {
            return scan(low, high, time);
        }
        // Even steps lead to the place itself but where rounding decides.
        const auto length = static_cast<double>(high - low);
        const double steps = (time - t[anchor]) * rate + static_cast<double>(anchor - low + 1);
        const std::ptrdiff_t guess = low + static_cast<std::ptrdiff_t>(std::max(0.0, std::min(length, steps)));
        if ((guess == low || isNotLater(t[guess - 1], time)) && (guess == high || !isNotLater(t[guess], time))) {
            return guess;
        }
        return gallop(low, high, time, std::min(guess, high - 1));
    }

private:
    static bool isNotLater(double stamp, double time) { return !(stamp > time); }
    std::ptrdiff_t scan(std::ptrdiff_t low, std::ptrdiff_t high, double time) const;
    std::ptrdiff_t gallop(std::ptrdiff_t low, std::ptrdiff_t high, double time, std::ptrdiff_t guess) const;

    const double* const t;
    const bool hasRisingTimes;
    const double rate;  ///< samples a second
};

}  // namespace dspwavedecks
