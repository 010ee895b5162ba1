#include "LevelComparator.h"

#include <algorithm>
#include <cmath>

namespace deckutil {

double crossingTime(double t0, double x0, double t1, double x1, double level) {
    const double time = t0 + (t1 - t0) * ((level - x0) / (x1 - x0));
    // Values near the largest double overflow in the differences; the sample that crossed is then near enough.
    return time >= t0 && time <= t1 ? time : t1;
}

bool LevelComparator::setLevel(double newLevel, double newHysteresis, double lastValue) {
    if (newLevel == level && newHysteresis == hysteresis) {
        return true;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    level = newLevel;
    hysteresis = newHysteresis;
    const bool known = !std::isnan(level);
    riseReady = known ? std::min(std::nextafter(level, -infinity), level - hysteresis) : -infinity;
    fallReady = known ? std::max(std::nextafter(level, infinity), level + hysteresis) : infinity;
    const bool holds = (mayRise && lastValue < level) || (mayFall && lastValue > level);
    if (!holds) {
        forget();
        track(lastValue);
    }
    return holds;
}

}  // namespace deckutil
