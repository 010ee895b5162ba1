#include "InterpolationAtLevel.h"

#include <algorithm>
#include <limits>

namespace dspwavedecks {

namespace {

double interpolateBefore(const double* levels, const double* positions, std::size_t n, std::size_t k, double level) {
    if (k == 0 || k == n) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return positions[k - 1] + (positions[k] - positions[k - 1]) * (level - levels[k - 1]) / (levels[k] - levels[k - 1]);
}

}  // namespace

double interpolateAtLevel(const double* levels, const double* positions, std::size_t n, double level) {
    const double* above = std::find_if(levels, levels + n, [level](double value) { return value > level; });
    return interpolateBefore(levels, positions, n, static_cast<std::size_t>(above - levels), level);
}

double interpolateAtAscendingLevel(const double* levels, const double* positions, std::size_t n, double level) {
    const double* above = std::partition_point(levels, levels + n, [level](double value) { return !(value > level); });
    return interpolateBefore(levels, positions, n, static_cast<std::size_t>(above - levels), level);
}

}  // namespace dspwavedecks
