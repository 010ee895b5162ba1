#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "LevelComparator.h"
#include "SampleBlock.h"
#include "TriggerEnums.h"

namespace deckutil {

/// What the trigger looks for.
struct TriggerConditionSettings {
    TDTC::TypeEnum type = TDTC::Edge;
    TDTC::PolarityEnum polarity = TDTC::Positive;
    double hysteresis = 0.0;  ///< in the signal's unit
    double upperLevel = 0.0;  ///< transition, runt, window
    double lowerLevel = 0.0;
    double minTime = 0.0;  ///< s; pulse width, transition, runt
    double maxTime = std::numeric_limits<double>::infinity();
    double timeout = 0.0;  ///< s

    bool operator==(const TriggerConditionSettings&) const = default;
};

/// The points at which one sample interval fulfils the condition, rising in time. No interval has more than two: a jump
/// across a window enters and leaves it.
struct TriggerPoints {
    std::array<double, 2> times{};
    std::size_t count = 0;

    void add(double time) { times[count++] = time; }
    void sort() {
        if (count == 2 && times[0] > times[1]) {
            std::swap(times[0], times[1]);
        }
    }
};

/// Samples of a block at which a level is crossed in a way that is a trigger point.
struct BlockCrossings {
    std::uint64_t atLower, atUpper;
};

/// The points at which a block of samples fulfils the condition, in order of time.
struct TriggerBlockPoints {
    /// Two a sample, one behind the last, and a place beyond the last one added.
    std::array<double, 2 * blockSamples + 2> times;
    std::size_t count;

    void add(double time) { addIf(true, time); }
    /// Without a branch, which on noise would be mispredicted.
    void addIf(bool counts, double time) {
        times[count] = time;
        count += counts ? 1 : 0;
    }
};

/// Finds the points of a sampled signal at which a trigger condition is fulfilled. The signal is taken as the straight
/// lines between its samples, so that all times are known to better than a sample.
///   edge         the level is crossed
///   pulse width  a pulse, from one crossing of the level to the next, opposite one, ends within minTime .. maxTime
///   transition   the signal has gone from one of the two levels to the other within minTime .. maxTime
///   runt         a pulse ends within minTime .. maxTime that left one level and came back without reaching the other
///   window       the signal enters or leaves the band between the two levels
///   timeout      the signal has stayed on its side of the level for the timeout since it crossed to it
class TriggerCondition {
public:
    /// Takes over settings; level is for edge, pulse width and timeout, NaN when it is not known yet. Crossings seen so
    /// far count on as long as the last value still lies on the same side of each level.
    void configure(const TriggerConditionSettings& newSettings, double level, double lastValue);

    /// The condition begins anew with the next sample, as after a gap.
    void forget();

    /// Takes the sample (t1, x1) that follows (t0, x0).
    TriggerPoints advance(double t0, double x0, double t1, double x1);

    /// Takes the next samples, 1 to 64: the same as advance() for each, but points before countsFrom may be left out.
    /// The sample taken last must stand before them. For conditions that have stretches.
    void advanceBlock(const SampleBlock& block, double countsFrom, TriggerBlockPoints& points);

    /// The same for the others: tells where points lie, and works out those that are asked for.
    BlockCrossings advanceBlock(const SampleBlock& block);
    TriggerPoints pointsAt(const SampleBlock& block, const BlockCrossings& crossings, int i) const;

    /// Whether a level was crossed by the last few samples of the last block.
    bool crossesOften() const { return crossedLast; }

    /// Takes a sample for the edge and the window where a trigger point would not count: only the side matters.
    void track(double value) {
        lower.track(value);
        if (settings.type != TDTC::Edge) {
            upper.track(value);
        }
    }
    /// Whether track() is enough where a trigger point would not count.
    bool hasNoStretches() const { return settings.type == TDTC::Edge || settings.type == TDTC::Window; }

    /// Of n samples among which no trigger point would count, the first from which on the condition comes to the state
    /// that it would come to from the first of all; n if that cannot be told.
    std::size_t firstThatCounts(const double* values, std::size_t n) const {
        return hasNoStretches() ? lastThatSettlesSides(values, n) : lastSwing(values, n);
    }
    /// Begins anew with n samples, at least one, among which no trigger point would count.
    void resume(const double* times, const double* values, std::size_t n);

    /// While samples stay strictly between the fences and before the deadline, advance() does nothing.
    double lowFence() const;
    double highFence() const;
    double deadline() const { return timeoutDeadline; }
    /// No trigger point lies before this time, whatever samples follow the one at `time`.
    double earliestPoint(double time) const;

private:
    struct Interval {
        double t0, x0, t1, x1;
        double crossing(const LevelComparator& comparator) const {
            return crossingTime(t0, x0, t1, x1, comparator.getLevel());
        }
    };
    /// A stretch that has begun and may end in a trigger point.
    struct Stretch {
        bool open = false;
        double start = 0.0;
        void begin(double time) {
            open = true;
            start = time;
        }
    };

    enum LevelIndex { lowerLevel, upperLevel };
    /// Where in a block a stretch begins, is given up, and ends; within a sample in this order.
    struct StretchBits {
        LevelIndex beginLevel, endLevel;
        std::uint64_t begins, spoils, ends;
    };

    class BlockTimes;
    struct FollowedLevels;

    bool usesTwoLevels() const;
    FollowedLevels followLevels(const SampleBlock& block);
    void advanceTimeout(const SampleBlock& block, const CrossingBits& crossings, TriggerBlockPoints& points);
    void advanceStretches(const SampleBlock& block, const StretchBits& up, const StretchBits& down, double countsFrom,
                          TriggerBlockPoints& points);
    std::uint64_t lastingEnds(const BlockTimes& times, const StretchBits& at, std::uint64_t ends, double start) const;
    std::size_t lastThatSettlesSides(const double* values, std::size_t n) const;
    std::size_t lastSwing(const double* values, std::size_t n) const;
    bool wants(TDTC::PolarityEnum polarity) const {
        return settings.polarity == TDTC::Either || settings.polarity == polarity;
    }
    std::uint64_t wanted(TDTC::PolarityEnum polarity, std::uint64_t bits) const { return wants(polarity) ? bits : 0; }
    void close(Stretch& stretch, double end, TDTC::PolarityEnum polarity, TriggerPoints& points) const;
    void advanceEdge(const Interval& interval, TriggerPoints& points);
    void advancePulseWidth(const Interval& interval, TriggerPoints& points);
    void advanceTransition(const Interval& interval, TriggerPoints& points);
    void advanceRunt(const Interval& interval, TriggerPoints& points);
    void advanceWindow(const Interval& interval, TriggerPoints& points);
    void advanceTimeout(const Interval& interval, TriggerPoints& points);

    // Options.
    TriggerConditionSettings settings;

    // State. The single level stands in `lower`; `upper` is for the types with two.
    LevelComparator lower;
    LevelComparator upper;
    Stretch upward;    ///< positive pulse or runt, or rise, that has begun
    Stretch downward;  ///< negative pulse or runt, or fall, that has begun
    double timeoutDeadline = std::numeric_limits<double>::infinity();
    bool crossedLast = false;
};

}  // namespace deckutil
