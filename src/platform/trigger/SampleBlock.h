#pragma once

#include <cstddef>
#include <cstdint>

#include "LevelBits.h"
#include "LevelComparator.h"

namespace deckutil {

/// Samples that follow one another, and maybe the one before them in front.
struct SampleBlock {
    const double* times;   ///< [count] s
    const double* values;  ///< [count] signal's unit
    std::size_t count;

    /// When the line from the sample before sample i reaches the level.
    double crossing(std::ptrdiff_t i, double level) const {
        return crossingTime(times[i - 1], values[i - 1], times[i], values[i], level);
    }
    /// Which of 1 to 64 samples, whose times don't fall, lie at a time or behind it; without meaning behind the last.
    std::uint64_t notBefore(double time) const {
        if (times[count - 1] < time) {
            return 0;
        }
        return ~std::uint64_t{0} << (times[0] < time ? countBefore()(times, count, time) : 0);
    }
};

}  // namespace deckutil
