#pragma once

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
    std::ptrdiff_t between(std::ptrdiff_t low, std::ptrdiff_t high, double time, std::ptrdiff_t anchor) const;

private:
    std::ptrdiff_t gallop(std::ptrdiff_t low, std::ptrdiff_t high, double time, std::ptrdiff_t guess) const;

    const double* const t;
    const bool hasRisingTimes;
    const double rate;  ///< samples a second
};

}  // namespace dspwavedecks
