#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "DateTime.h"

namespace program {

/// When the samples of a recording were taken: each at the rate on from the beginning of the last part in front of it
/// of which the recording tells the time.
class RecordedTimes {
public:
    /// Tells when a sample was taken; samples rise from call to call.
    void add(std::uint64_t sample, UtcTime time) { parts_.push_back({sample, time}); }

    /// Says that `points` samples from `first` on are played over and over: each time around they bear the times at
    /// which they were taken.
    void loop(std::uint64_t first, std::uint64_t points);

    /// When a sample was taken; nothing for a source that tells no time, or where the calendar does not reach.
    /// rate  Hz
    std::optional<UtcTime> at(std::uint64_t sample, double rate) const;

    /// When the last of the first `samples` samples had been taken: one sample time behind it.
    std::optional<UtcTime> behind(std::uint64_t samples, double rate) const;

private:
    struct Part {
        std::uint64_t sample;
        UtcTime time;
    };

    /// The time so many sample times behind a sample.
    std::optional<UtcTime> timeOf(std::uint64_t sample, double ahead, double rate) const;

    std::vector<Part> parts_;
    std::uint64_t loopFirst_ = 0;
    std::uint64_t loopPoints_ = 0;  ///< 0: played once
};

}  // namespace program
