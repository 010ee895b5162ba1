#include "LevelComparator.h"

#include <algorithm>
#include <cmath>

namespace deckutil {

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
