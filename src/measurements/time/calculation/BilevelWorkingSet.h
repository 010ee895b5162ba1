#pragma once

#include <cstddef>
#include <limits>

namespace dspwavedecks {

/// The span that is measured: t and x of the same count, relative indices.
struct BilevelSpan {
    const double* t;  ///< [count] s
    const double* x;  ///< [count] signal's unit
    std::ptrdiff_t count;

    double firstTime() const { return t[0]; }
    double lastTime() const { return t[count - 1]; }

    /// Begins to load the samples begin .. end.
    void prefetch(std::ptrdiff_t begin, std::ptrdiff_t end) const {
        constexpr std::ptrdiff_t lineSamples = 8;
        for (std::ptrdiff_t i = begin; i < end; i += lineSamples) {
            __builtin_prefetch(t + i);
            __builtin_prefetch(x + i);
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

/// Samples that are taken in together: their values and times stay in the first cache while the transitions among them
/// are measured.
inline constexpr std::ptrdiff_t bilevelBlockSamples = 2048;

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

/// One transition between the two states of a span.
struct BilevelTransition {
    std::ptrdiff_t start;  ///< last sample in the state that is left
    std::ptrdiff_t end;    ///< first sample in the state that is entered
    bool rising;
    double midCrossTime;  ///< s
    double duration;      ///< s, between the two reference crossings
    double slewRate;      ///< signal's unit/s, between the two reference crossings
};

}  // namespace dspwavedecks
