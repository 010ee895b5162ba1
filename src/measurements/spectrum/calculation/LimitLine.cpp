#include "LimitLine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace dspwavedecks {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

}  // namespace

LimitLine::LimitLine(const std::vector<double>& mask, const std::vector<double>& frequencyLimits,
                     double frequencyOffset) {
    if (mask.size() >= 2) {
        const std::size_t n = mask.size() / 2;
        for (std::size_t i = 0; i < n; ++i) {
            x.push_back(mask[i] + frequencyOffset);
            y.push_back(mask[n + i]);
        }
    } else if (mask.size() == 1 && frequencyLimits.size() >= 2) {
        x = {frequencyLimits[0], frequencyLimits[1]};
        y = {mask[0], mask[0]};
    }
    // Breakpoints at 0 Hz can be told apart so; elsewhere the sum is the frequency itself, and the rules for slopes
    // that are no number carry the step.
    for (std::size_t i = 1; i < x.size(); ++i) {
        if (x[i] == x[i - 1]) {
            x[i] += std::numeric_limits<double>::min();
        }
    }
    isAscending = std::is_sorted(x.begin(), x.end());
}

double LimitLine::levelAt(double frequency) const {
    if (x.empty() || frequency < x.front() || frequency > x.back()) {
        return nan;
    }
    if (x.size() == 1) {
        return frequency == x[0] ? y[0] : nan;
    }
    const auto isAtOrAbove = [frequency](double breakpoint) { return frequency <= breakpoint; };
    const auto upper = isAscending
                           ? std::partition_point(x.begin() + 1, x.end(), [&](double b) { return !isAtOrAbove(b); })
                           : std::find_if(x.begin() + 1, x.end(), isAtOrAbove);
    if (upper == x.end()) {
        return nan;
    }
    const auto j = static_cast<std::size_t>(upper - x.begin());
    const double distance = frequency - x[j - 1];
    const double slope = (y[j] - y[j - 1]) / (x[j] - x[j - 1]);
    // Level pieces at an infinite level and steps have no slope; at their beginning the level is that of the
    // breakpoint.
    if (std::isnan(slope) || (distance == 0.0 && std::isinf(slope))) {
        return y[j - 1];
    }
    return y[j - 1] + distance * slope;
}

}  // namespace dspwavedecks
