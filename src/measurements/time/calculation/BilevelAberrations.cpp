// Aberrations of a pulse waveform around its transitions: preshoot, overshoot, undershoot and settling time.
#include <algorithm>
#include <cmath>

#include "BilevelMeasurements.h"
#include "ExtremeScan.h"
#include "SpanKernels.h"

namespace dspwavedecks {

namespace {

using Index = std::ptrdiff_t;

constexpr double unmeasured = bilevelMeasurementsStruct::unmeasured;
/// Length of the stretches before and after a transition, in durations of the transition.
constexpr double stretchDurations = 3.0;

/// A deviation in the signal's unit, and the time at which it occurs, or any time of the span where all lie in it.
struct Deviation {
    double value, time;
};

/// How far a stretch goes above and below a level.
struct StretchDeviations {
    Deviation over, under;
};

/// Mean of the values whose time lies in the span.
struct SpanAverage {
    double sum = 0.0;
    double count = 0.0;
    void add(const BilevelSpan& span, double value, double time) {
        if (span.contains(time)) {
            sum += value;
            count += 1.0;
        }
    }
    double mean() const { return sum / count; }
};

struct SideAverages {
    SpanAverage preshoot, overshoot, undershoot, settlingTime;
    /// The settling time is left unmeasured also when the sum is exactly 0; meant so.
    double meanSettlingTime() const {
        return settlingTime.count != 0.0 && settlingTime.sum != 0.0 ? settlingTime.mean() : unmeasured;
    }
};

/// Searches for the first time of a span that is later than a given one. Where times never fall it looks first where
/// even steps would have it.
class LaterTimeSearch {
public:
    explicit LaterTimeSearch(const BilevelSpan& searchedSpan)
        : t(searchedSpan.t),
          hasRisingTimes(spanKernels().neverFalls(searchedSpan.t, static_cast<std::size_t>(searchedSpan.count))),
          rate(static_cast<double>(searchedSpan.count - 1) / (searchedSpan.lastTime() - searchedSpan.firstTime())) {}

    /// Whether no time falls: then all of them lie in the span.
    bool timesRise() const { return hasRisingTimes; }

    /// First index from low up whose time is later, or `high` if none lies below it.
    Index between(Index low, Index high, double time) const {
        if (low >= high) {
            return high;
        }
        const auto isNotLater = [time](double stamp) { return !(stamp > time); };
        if (!hasRisingTimes) {
            return std::find_if_not(t + low, t + high, isNotLater) - t;
        }
        const Index guess = guessBetween(low, high - 1, time);
        if (isNotLater(t[guess])) {
            low = guess + 1;
            for (Index step = 1; low + step < high; step *= 2) {
                if (!isNotLater(t[low + step])) {
                    high = low + step;
                } else {
                    low += step + 1;
                }
            }
        } else {
            high = guess;
            for (Index step = 1; high - step > low; step *= 2) {
                if (isNotLater(t[high - step])) {
                    low = high - step + 1;
                } else {
                    high -= step;
                }
            }
        }
        return std::partition_point(t + low, t + high, isNotLater) - t;
    }

private:
    Index guessBetween(Index low, Index high, double time) const {
        const double steps = (time - t[low]) * rate;
        return steps > 0.0 ? low + static_cast<Index>(std::min(steps, static_cast<double>(high - low))) : low;
    }

    const double* t;
    const bool hasRisingTimes;
    const double rate;  ///< samples a second
};

/// The stretches around the transitions of one span.
class StretchFinder {
public:
    StretchFinder(const BilevelSpan& measuredSpan, const BilevelLevels& referenceLevels,
                  const BilevelTransitions& foundTransitions, const LaterTimeSearch& timeSearch)
        : span(measuredSpan),
          levels(referenceLevels),
          transitions(foundTransitions),
          firstLater(timeSearch),
          sides{sideLevels(-1), sideLevels(1)} {}

    StretchDeviations before(std::size_t i) const {
        const Index start = transitions.startIndices[i];
        const double from = span.crossing(sideOf(i).startBound, start) - stretchDurations * transitions.durations[i];
        Index first = start == 0 ? 0 : firstLater.between(0, start, from);
        // From the third transition on: the second may reach back over the first one. Meant so.
        if (i >= 2) {
            first = std::max(first, transitions.endIndices[i - 1]);
        }
        return deviations(first, start, sideOf(i).preLevel);
    }

    StretchDeviations after(std::size_t i) const {
        const Index end = transitions.endIndices[i];
        const double until = span.crossing(sideOf(i).endBound, end - 1) + stretchDurations * transitions.durations[i];
        const bool isLast = i + 1 == transitions.startIndices.size();
        const Index limit = firstLater.between(end, isLast ? span.count : transitions.startIndices[i + 1], until);
        return deviations(end, limit > end ? limit - 1 : limit, postLevel(i));
    }

    double postLevel(std::size_t i) const { return sideOf(i).postLevel; }

    /// Of the amplitude.
    double percent(double difference) const {
        return levels.amplitude == 0.0 ? unmeasured : difference / levels.amplitude * 100.0;
    }

private:
    /// The levels about a transition of one polarity.
    struct SideLevels {
        double startBound, endBound, preLevel, postLevel;
    };
    SideLevels sideLevels(int polarity) const {
        return {levelByPolarity(levels.lowStateBound, levels.highStateBound, polarity),
                levelByPolarity(levels.highStateBound, levels.lowStateBound, polarity),
                levelByPolarity(levels.low, levels.high, polarity), levelByPolarity(levels.high, levels.low, polarity)};
    }
    const SideLevels& sideOf(std::size_t i) const { return sides[transitions.polarities[i] >= 1 ? 1 : 0]; }

    StretchDeviations deviations(Index first, Index last, double level) const {
        const auto count = static_cast<std::size_t>(last - first + 1);
        if (firstLater.timesRise()) {
            const ExtremeValues values = extremeValues(first, count);
            const double anyTime = span.firstTime();
            return {{values.maximum - level, anyTime}, {level - values.minimum, anyTime}};
        }
        const ExtremePositions extremes = findExtremes(span.x + first, count, MinMaxLastMaximum);
        const Index minimum = first + static_cast<Index>(extremes.minimum);
        const Index maximum = first + static_cast<Index>(extremes.maximum);
        return {{span.x[maximum] - level, span.t[maximum]}, {level - span.x[minimum], span.t[minimum]}};
    }

    ExtremeValues extremeValues(Index first, std::size_t count) const {
        if (count <= edgeSamples && first + static_cast<Index>(edgeSamples) <= span.count) {
            const ScannedExtremes few = spanKernels().scanFew(span.x + first, count);
            if (!few.hasNaN) {
                return {few.minimum, few.maximum, false};
            }
        }
        return findExtremeValues(span.x + first, count);
    }

    const BilevelSpan& span;
    const BilevelLevels& levels;
    const BilevelTransitions& transitions;
    const LaterTimeSearch& firstLater;
    const SideLevels sides[2];  ///< falling, rising
};

/// Time at which the waveform enters the band of +- tolerance about the level reached, for good up to settleEnd; NaN if
/// it is outside then, or if settleEnd lies before the transition's end or beyond the next transition or the span.
double findSettleTime(const BilevelSpan& span, const BilevelTransitions& transitions, const LaterTimeSearch& firstLater,
                      std::size_t i, double settleEnd, double postLevel, double tolerance) {
    const Index start = transitions.startIndices[i];
    const Index end = transitions.endIndices[i];
    const bool isLast = i + 1 == transitions.startIndices.size();
    const Index lastAllowed = isLast ? span.count - 1 : transitions.startIndices[i + 1];
    if (settleEnd < span.t[end] || (firstLater.timesRise() && !(span.t[lastAllowed] > settleEnd))) {
        return unmeasured;
    }
    const Index j = firstLater.between(end, lastAllowed + 1, settleEnd);
    if (j > lastAllowed) {
        return unmeasured;
    }
    Index k = j;
    while (k >= start && !(std::fabs(span.x[k] - postLevel) > tolerance)) {
        --k;
    }
    if (k < start) {
        k = 0;  // never outside: the interpolation is made on the first interval of the span. Meant so.
    }
    if (k == j) {
        return unmeasured;
    }
    const double error = span.x[k] - postLevel;
    const double step = (span.x[k + 1] - postLevel) - error;
    if (step == 0.0) {
        return unmeasured;
    }
    const double target = error < 0.0 ? -tolerance : error > 0.0 ? tolerance : 0.0;
    return span.t[k] + (target - error) * (span.t[k + 1] - span.t[k]) / step;
}

}  // namespace

void BilevelMeasurements::computeAberrationsMetrics(const BilevelSpan& span, const BilevelLevels& levels,
                                                    const BilevelTransitions& transitions) {
    if (!transitions.hasStateSamples || transitions.polarities.empty()) {
        return;
    }
    // Of another order than the state band, and not the same number to the last bit: meant so.
    const double tolerance = levels.amplitude * stateLevelTolerance / 100.0;
    const LaterTimeSearch firstLater(span);
    const StretchFinder stretches(span, levels, transitions, firstLater);
    SideAverages positive;
    SideAverages negative;
    const std::size_t count = transitions.polarities.size();
    for (std::size_t i = 0; i < count; ++i) {
        span.prefetch(transitions.startIndices[std::min(i + prefetchDistance, count - 1)]);
        const bool falling = transitions.polarities[i] < 1;
        SideAverages& side = falling ? negative : positive;
        const StretchDeviations before = stretches.before(i);
        const StretchDeviations after = stretches.after(i);
        const Deviation& preshoot = falling ? before.over : before.under;
        const double midCross = transitions.midCrossTimes[i];
        const double settleTime =
            findSettleTime(span, transitions, firstLater, i, midCross + settleSeek, stretches.postLevel(i), tolerance);
        // Above the level reached is overshoot and below it undershoot, rising or falling.
        side.preshoot.add(span, stretches.percent(preshoot.value), preshoot.time);
        side.overshoot.add(span, stretches.percent(after.over.value), after.over.time);
        side.undershoot.add(span, stretches.percent(after.under.value), after.under.time);
        side.settlingTime.add(span, settleTime - midCross, settleTime);
    }
    metrics.posPreshoot = positive.preshoot.mean();
    metrics.posOvershoot = positive.overshoot.mean();
    metrics.posUndershoot = positive.undershoot.mean();
    metrics.posSettlingTime = positive.meanSettlingTime();
    metrics.negPreshoot = negative.preshoot.mean();
    metrics.negOvershoot = negative.overshoot.mean();
    metrics.negUndershoot = negative.undershoot.mean();
    metrics.negSettlingTime = negative.meanSettlingTime();
}

}  // namespace dspwavedecks
