#pragma once

#include <sys/types.h>

#include <string>

#include "FftPlanKey.h"

namespace fftbridge {

/// A plan being measured in a child process, which hands back FFTW's wisdom as text.
///
/// Measuring takes up to seconds and would hold the planner's lock for all that time. The child is a plain fork, as a
/// library has no program of its own to start, so the following care is taken:
/// - The caller holds the planner's lock while forking: the child's copy of the planner is at rest. The child itself
///   takes no lock of ours; the C library makes its allocator usable in a fork of a process with threads.
/// - All signals are blocked around the fork; the child sets them to their defaults, so that it runs no handler of the
///   program. It closes every file but its pipe: no connection of the program stays open through it.
/// - It ends by _exit: no destructor and no exit handler of the program runs twice. An alarm ends it if it gets stuck,
///   for instance when the parent is gone.
class PlanMeasurement {
public:
    enum class State { running, finished, failed };

    /// Forks; `state` is `failed` at once if there can be no child.
    explicit PlanMeasurement(const FftPlanKey& key);
    /// Ends the child if it still runs.
    ~PlanMeasurement();
    PlanMeasurement(const PlanMeasurement&) = delete;
    PlanMeasurement& operator=(const PlanMeasurement&) = delete;

    /// Looks after the child without waiting for it.
    State poll();
    /// FFTW's wisdom, once `poll` has returned `finished`.
    const std::string& wisdom() const { return wisdom_; }

private:
    void readWhatIsThere();

    pid_t child_{-1};
    int pipe_{-1};
    std::string wisdom_;
    State state_{State::failed};
};

}  // namespace fftbridge
