#pragma once

#include <chrono>

namespace program {

/// Lets the transforms in use get better plans while a live signal runs: a step a few times a second, each of about a
/// millisecond. A recording that goes through as fast as it can stays on its first plans, so that the same recording
/// gives the same bytes.
class PlanImprovement {
public:
    explicit PlanImprovement(bool live) : live_(live) {}

    /// Takes a step when one is due.
    void step();

private:
    using Clock = std::chrono::steady_clock;

    bool live_;
    Clock::time_point next_ = Clock::now();
};

}  // namespace program
