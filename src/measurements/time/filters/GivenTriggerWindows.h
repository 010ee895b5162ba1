#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

namespace dspwavedecks {

/// Windows that take the place of those that the trigger engine finds, one a request, so that what the filter does with
/// them can be seen by itself.
class GivenTriggerWindows {
public:
    /// bounds  start and end of each window in turn, s; NaN for a request without one
    explicit GivenTriggerWindows(std::vector<double> bounds) : bounds_(std::move(bounds)) {}

    /// The window that is next; NaN for both ends when all have been given out. Returns whether it is one.
    bool takeNext(double& start, double& end) {
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        const bool anyLeft = next_ + 2 <= bounds_.size();
        start = anyLeft ? bounds_[next_] : none;
        end = anyLeft ? bounds_[next_ + 1] : none;
        next_ += anyLeft ? 2 : 0;
        const bool isWindow = std::isfinite(start) && std::isfinite(end);
        if (isWindow) {
            last_ = {start, end};
        }
        return isWindow;
    }

    /// The last that was one; NaN before the first.
    void getLast(double& start, double& end) const { std::tie(start, end) = last_; }

private:
    // Options.
    std::vector<double> bounds_;

    // State.
    std::size_t next_ = 0;  ///< bounds given out
    std::pair<double, double> last_{std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
};

}  // namespace dspwavedecks
