#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "BilevelWorkingSet.h"
#include "LaterTimeSearch.h"
#include "SpanKernels.h"
#include "bilevelMeasurementsStruct.h"

namespace dspwavedecks {

/// Averages the aberrations of a pulse waveform around its transitions: preshoot, overshoot, undershoot and settling
/// time, of each direction.
class BilevelAberrations {
public:
    /// How long and how closely a waveform must keep to the level reached to be settled.
    struct Settling {
        double tolerance;  ///< signal's unit
        double seek;       ///< s
    };

    /// timesRise  whether no time of the span falls
    BilevelAberrations(const BilevelSpan& measuredSpan, const BilevelLevels& stateLevels,
                       const Settling& settlingLimits, bool timesRise);

    /// Takes in the transitions in order, any number at a time.
    /// nextStart  where the one behind them starts; the span's count if there is none
    void add(std::span<const BilevelTransition> transitions, std::ptrdiff_t nextStart);

    void write(bilevelMeasurementsStruct& metrics) const;

private:
    using Index = std::ptrdiff_t;

    /// The levels about a transition of one direction.
    struct SideLevels {
        double startBound, endBound, before, after;
    };

    /// Samples from first to last.
    struct Stretch {
        Index first, last;
    };

    /// The stretches about a transition.
    struct Stretches {
        Stretch before, after;
    };

    struct Average {
        double sum = 0.0;
        double count = 0.0;
        void add(double value) {
            sum += value;
            count += 1.0;
        }
        double mean() const { return sum / count; }
    };

    struct Side {
        Average preshoot, overshoot, undershoot, settlingTime;
        double meanSettlingTime() const;
    };

    SideLevels sideLevels(int polarity) const;
    Stretch before(const BilevelTransition& transition) const;
    Stretch after(const BilevelTransition& transition, Index nextStart) const;
    void addDeviations(bool rising, const Stretches& about);
    void addDeviationsInSpan(bool rising, const Stretches& about);
    void addInSpan(Average& average, double value, double time) const;
    void pass(const BilevelTransition& transition);
    double findSettleTime(const BilevelTransition& transition, Index nextStart) const;
    double percent(double difference) const;

    // What is measured, and how.
    const BilevelSpan& span;
    const BilevelLevels& levels;
    const Settling settling;
    const SpanKernels& kernels;
    const bool hasRisingTimes;

    // Derived.
    const SideLevels edges[2];  ///< falling, rising
    const LaterTimeSearch firstLater;

    // State.
    Side sides[2];                                                   ///< falling, rising
    bool isFirst = true;                                             ///< no transition was taken in yet
    Index passed = 0;                                                ///< stretches begin no earlier
    double latestPassed = -std::numeric_limits<double>::infinity();  ///< of times that fall: the latest before `passed`

    // Scratch.
    std::vector<Stretches> stretches;
};

}  // namespace dspwavedecks
