#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace dspwavedecks {

/// The span that is measured: t and x of the same count, relative indices.
struct BilevelSpan {
    const double* t;  ///< [count] s
    const double* x;  ///< [count] signal's unit
    std::ptrdiff_t count;

    double firstTime() const { return t[0]; }
    double lastTime() const { return t[count - 1]; }
    /// Begins to load the samples about a transition: they lie apart, and memory does not foresee where.
    void prefetch(std::ptrdiff_t i) const {
        constexpr std::ptrdiff_t lineSamples = 8;
        for (const std::ptrdiff_t near :
             {std::max(i - lineSamples, std::ptrdiff_t{0}), i, std::min(i + lineSamples, count - 1)}) {
            __builtin_prefetch(t + near);
            __builtin_prefetch(x + near);
        }
    }

    /// Whether a time lies in the span, both ends included; not for NaN.
    bool contains(double time) const { return time >= firstTime() && time <= lastTime(); }

    /// Time at which the straight line over the interval [i, i + 1] reaches a level; NaN for an interval outside the
    /// span or a flat one. The line goes on beyond the interval: a level that it doesn't hold gives a time outside it.
    double crossing(double level, std::ptrdiff_t i) const {
        if (i < 0 || i + 1 >= count || x[i + 1] == x[i]) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        return t[i] + (t[i + 1] - t[i]) * (level - x[i]) / (x[i + 1] - x[i]);
    }
};

/// How many transitions ahead their samples are loaded.
inline constexpr std::size_t prefetchDistance = 8;

/// The levels that one span is measured against, in the signal's unit.
struct BilevelLevels {
    double high, low, amplitude;
    double highStateBound, lowStateBound;  ///< a sample beyond one of these lies in a state
    double upper, mid, lower;              ///< reference levels
};

/// One of two levels by polarity p, 1 or -1: rising for p = 1, falling for p = -1. Formed by arithmetic on both, so
/// that the last bit of the result depends on both: meant so.
inline double levelByPolarity(double rising, double falling, int p) {
    return (rising + falling + (rising - falling) * p) * 0.5;
}

/// The transitions found in one span, in order; one entry each in the first five lists.
struct BilevelTransitions {
    bool hasStateSamples = false;              ///< some sample of the span lies in a state
    std::vector<std::ptrdiff_t> startIndices;  ///< last sample in the state that is left
    std::vector<std::ptrdiff_t> endIndices;    ///< first sample in the state that is entered
    std::vector<int> polarities;               ///< 1 rising, -1 falling
    std::vector<double> midCrossTimes;         ///< s
    std::vector<double> durations;             ///< s, between the two reference crossings
    std::vector<std::size_t> inSpan;           ///< numbers of the transitions whose mid crossing lies in the span
};

}  // namespace dspwavedecks
