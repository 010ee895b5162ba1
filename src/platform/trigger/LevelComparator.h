#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "LevelBits.h"

namespace deckutil {

/// Which way a level was crossed by the last sample.
enum class Crossing { None, Rising, Falling };

/// Samples of a block at which a level was crossed, sample 0 in the lowest bit.
struct CrossingBits {
    std::uint64_t rising, falling;
};

/// Time at which the straight line from (t0, x0) to (t1, x1) reaches the level, inside t0 .. t1.
/// The two values lie on different sides of the level, or one of them on it.
inline double crossingTime(double t0, double x0, double t1, double x1, double level) {
    const double time = t0 + (t1 - t0) * ((level - x0) / (x1 - x0));
    // Values near the largest double overflow in the differences; either of the two samples is then near enough.
    return time >= t0 && time <= t1 ? time : t1;
}

/// A flip-flop followed over a block of samples: bit i tells whether it is set behind sample i. Sample i sets it where
/// its bit in `sets` is 1 and clears it where its bit in `keeps` is 0; none does both.
/// The sum carries each set bit upward to the end of its run in `keeps`.
inline std::uint64_t followFlipFlop(std::uint64_t sets, std::uint64_t keeps, bool isSetBefore) {
    return (((sets + keeps + (isSetBefore ? 1 : 0)) ^ keeps) | sets) & keeps;
}

/// The state of that flip-flop before each sample.
inline std::uint64_t statesBefore(std::uint64_t states, bool isSetBefore) {
    return states << 1 | (isSetBefore ? 1 : 0);
}

/// Crossings of one level, with hysteresis h >= 0:
///   rising   the signal has been at level - h or lower (below the level for h = 0) and now reaches it from below
///   falling  the signal has been at level + h or higher (above the level for h = 0) and now reaches it from above
/// The crossing is that of the level itself; the hysteresis only decides whether it counts. A level of NaN is never
/// crossed.
class LevelComparator {
public:
    /// Moves the level. What was seen so far counts on where the last value still lies on the same side.
    /// Returns whether it does.
    bool setLevel(double newLevel, double newHysteresis, double lastValue);

    /// The next sample decides anew on which side the signal is.
    void forget() {
        mayRise = false;
        mayFall = false;
    }

    /// Takes the next sample.
    Crossing advance(double value) {
        const Crossing crossing = mayRise && value >= level   ? Crossing::Rising
                                  : mayFall && value <= level ? Crossing::Falling
                                                              : Crossing::None;
        track(value);
        return crossing;
    }

    /// Takes the next sample without asking whether it crossed: no branches, which on noise would be mispredicted.
    void track(double value) {
        mayRise = (value <= riseReady) | (mayRise & (value < level));
        mayFall = (value >= fallReady) | (mayFall & (value > level));
    }

    /// Takes the next n samples, 1 to 64, where bits tells how they lie to bounds().
    CrossingBits advanceBlock(const LevelBits& bits, std::size_t n) {
        const std::uint64_t rises = followFlipFlop(bits.isLow, ~bits.atLeast, mayRise);
        const std::uint64_t falls = followFlipFlop(bits.isHigh, ~bits.atMost, mayFall);
        const CrossingBits crossings{statesBefore(rises, mayRise) & bits.atLeast,
                                     statesBefore(falls, mayFall) & bits.atMost};
        mayRise = (rises >> (n - 1) & 1) != 0;
        mayFall = (falls >> (n - 1) & 1) != 0;
        return crossings;
    }
    LevelBounds bounds() const { return {riseReady, level, fallReady}; }

    double getLevel() const { return level; }

    /// Whether a value settles which crossing may come next, whatever came before it: -1 for a rising one, 1 for a
    /// falling one, 0 if it settles nothing.
    int settledSide(double value) const { return value <= riseReady ? -1 : value >= fallReady ? 1 : 0; }

    /// While samples stay strictly between the two fences, advance() does nothing.
    double lowFence() const { return mayRise ? -std::numeric_limits<double>::infinity() : mayFall ? level : riseReady; }
    double highFence() const { return mayFall ? std::numeric_limits<double>::infinity() : mayRise ? level : fallReady; }

private:
    // Options.
    double level = std::numeric_limits<double>::quiet_NaN();
    double hysteresis = 0.0;

    // Derived: a value this low makes ready for a rising crossing, one this high for a falling one.
    double riseReady = -std::numeric_limits<double>::infinity();
    double fallReady = std::numeric_limits<double>::infinity();

    // State: which crossing may come next, one at most.
    bool mayRise = false;  ///< the last sample lies below the level
    bool mayFall = false;  ///< above it
};

}  // namespace deckutil
