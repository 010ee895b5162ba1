#include "InterpolationAtLevel.h"

#include <algorithm>
#include <limits>

namespace dspwavedecks {

double interpolateAtLevel(const double* levels, const double* positions, std::size_t n, double level) {
    const double* above = std::find_if(levels, levels + n, [level](double value) { return value > level; });
    const auto k = static_cast<std::size_t>(above - levels);
    if (k == 0 || k == n) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return positions[k - 1] + (positions[k] - positions[k - 1]) * (level - levels[k - 1]) / (levels[k] - levels[k - 1]);
}

}  // namespace dspwavedecks
