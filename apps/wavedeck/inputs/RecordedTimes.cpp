#include "RecordedTimes.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace program {

void RecordedTimes::loop(std::uint64_t first, std::uint64_t points) {
    loopFirst_ = first;
    loopPoints_ = points;
}

std::optional<UtcTime> RecordedTimes::timeOf(std::uint64_t sample, double ahead, double rate) const {
    if (parts_.empty()) {
        return std::nullopt;
    }
    if (loopPoints_ > 0 && sample >= loopFirst_) {
        sample = loopFirst_ + (sample - loopFirst_) % loopPoints_;
    }
    const auto next = std::upper_bound(parts_.begin(), parts_.end(), sample,
                                       [](std::uint64_t value, const Part& part) { return value < part.sample; });
    // What stands in front of the first time that is told is timed from there.
    const Part& part = next == parts_.begin() ? parts_.front() : *(next - 1);
    const double samples = static_cast<double>(sample) - static_cast<double>(part.sample) + ahead;
    const std::chrono::duration<double> passed(samples / rate);
    constexpr std::chrono::duration<double> farthest(1e11);  // three thousand years
    if (!(std::abs(passed.count()) < farthest.count())) {
        return std::nullopt;
    }
    return part.time + std::chrono::round<std::chrono::microseconds>(passed);
}

std::optional<UtcTime> RecordedTimes::at(std::uint64_t sample, double rate) const {
    return timeOf(sample, 0.0, rate);
}

std::optional<UtcTime> RecordedTimes::behind(std::uint64_t samples, double rate) const {
    return samples == 0 ? at(0, rate) : timeOf(samples - 1, 1.0, rate);
}

}  // namespace program
