#include "LaterTimeSearch.h"

#include <algorithm>

namespace dspwavedecks {

namespace {

using Index = std::ptrdiff_t;

}  // namespace

LaterTimeSearch::LaterTimeSearch(const BilevelSpan& searchedSpan, bool timesRise)
    : t(searchedSpan.t),
      hasRisingTimes(timesRise),
      rate(static_cast<double>(searchedSpan.count - 1) / (searchedSpan.lastTime() - searchedSpan.firstTime())) {}

Index LaterTimeSearch::scan(Index low, Index high, double time) const {
    return std::find_if(t + low, t + high, [time](double stamp) { return stamp > time; }) - t;
}

/// In steps that double, from where the time is thought to be.
Index LaterTimeSearch::gallop(Index low, Index high, double time, Index guess) const {
    if (isNotLater(t[guess], time)) {
        low = guess + 1;
        for (Index step = 1; low + step < high; step *= 2) {
            if (!isNotLater(t[low + step], time)) {
                high = low + step;
            } else {
                low += step + 1;
            }
        }
    } else {
        high = guess;
        for (Index step = 1; high - step > low; step *= 2) {
            if (isNotLater(t[high - step], time)) {
                low = high - step + 1;
            } else {
                high -= step;
            }
        }
    }
    return std::partition_point(t + low, t + high, [time](double stamp) { return isNotLater(stamp, time); }) - t;
}

}  // namespace dspwavedecks
