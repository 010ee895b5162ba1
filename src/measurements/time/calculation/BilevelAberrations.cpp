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

/// A deviation and the time at which it occurs.
struct Deviation {
    double percent, time;
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

/// Searches for the first time of a span that is later than a given one. Where times never fall they look close by
/// first: what is searched for lies a few durations from where the search begins.
class LaterTimeSearch {
public:
    explicit LaterTimeSearch(const BilevelSpan& searchedSpan)
        : t(searchedSpan.t),
          hasRisingTimes(spanKernels().neverFalls(searchedSpan.t, static_cast<std::size_t>(searchedSpan.count))) {}

    /// First index from `from` up whose time is later, or `limit` if none lies below it.
    Index upFrom(Index from, Index limit, double time) const {
        Index low = from;
        Index high = limit;
        for (Index step = 1; hasRisingTimes && low + step < high; step *= 2) {
            if (t[low + step] > time) {
                high = low + step;
                break;
            }
            low += step;
        }
        return search(low, high, time);
    }

    /// First index from 0 up whose time is later, or `limit` if none lies below it.
    Index below(Index limit, double time) const {
        Index low = 0;
        Index high = limit;
        for (Index step = 1; hasRisingTimes && high - step > low; step *= 2) {
            if (!(t[high - step] > time)) {
                low = high - step;
                break;
            }
            high -= step;
        }
        return search(low, high, time);
    }

private:
    Index search(Index low, Index high, double time) const {
        if (low >= high) {
            return high;
        }
        const auto isNotLater = [time](double stamp) { return !(stamp > time); };
        return (hasRisingTimes ? std::partition_point(t + low, t + high, isNotLater)
                               : std::find_if_not(t + low, t + high, isNotLater)) -
               t;
    }

    const double* t;
    const bool hasRisingTimes;
};

/// The stretches around the transitions of one span.
class StretchFinder {
public:
    StretchFinder(const BilevelSpan& measuredSpan, const BilevelLevels& referenceLevels,
                  const BilevelTransitions& foundTransitions, const LaterTimeSearch& timeSearch)
        : span(measuredSpan), levels(referenceLevels), transitions(foundTransitions), firstLater(timeSearch) {}

    StretchDeviations before(std::size_t i) const {
        const Index start = transitions.startIndices[i];
        const double startBound =
            levelByPolarity(levels.lowStateBound, levels.highStateBound, transitions.polarities[i]);
        const double from = span.crossing(startBound, start) - stretchDurations * transitions.durations[i];
        Index first = start == 0 ? 0 : firstLater.below(start, from);
        // From the third transition on: the second may reach back over the first one. Meant so.
        if (i >= 2) {
            first = std::max(first, transitions.endIndices[i - 1]);
        }
        return deviations(first, start, levelByPolarity(levels.low, levels.high, transitions.polarities[i]));
    }

    StretchDeviations after(std::size_t i) const {
        const Index end = transitions.endIndices[i];
        const double endBound = levelByPolarity(levels.highStateBound, levels.lowStateBound, transitions.polarities[i]);
        const double until = span.crossing(endBound, end - 1) + stretchDurations * transitions.durations[i];
        const bool isLast = i + 1 == transitions.startIndices.size();
        const Index limit = firstLater.upFrom(end, isLast ? span.count : transitions.startIndices[i + 1], until);
        return deviations(end, limit > end ? limit - 1 : limit, postLevel(i));
    }

    double postLevel(std::size_t i) const {
        return levelByPolarity(levels.high, levels.low, transitions.polarities[i]);
    }

private:
    StretchDeviations deviations(Index first, Index last, double level) const {
        const auto count = static_cast<std::size_t>(last - first + 1);
        const ExtremePositions extremes = findExtremes(span.x + first, count, MinMaxLastMaximum);
        const Index minimum = first + static_cast<Index>(extremes.minimum);
        const Index maximum = first + static_cast<Index>(extremes.maximum);
        return {{percent(span.x[maximum] - level), span.t[maximum]},
                {percent(level - span.x[minimum]), span.t[minimum]}};
    }

    double percent(double difference) const {
        return levels.amplitude == 0.0 ? unmeasured : difference / levels.amplitude * 100.0;
    }

    const BilevelSpan& span;
    const BilevelLevels& levels;
    const BilevelTransitions& transitions;
    const LaterTimeSearch& firstLater;
};

/// Time at which the waveform enters the band of +- tolerance about the level reached, for good up to settleEnd; NaN if
/// it is outside then, or if settleEnd lies before the transition's end or beyond the next transition or the span.
double findSettleTime(const BilevelSpan& span, const BilevelTransitions& transitions, const LaterTimeSearch& firstLater,
                      std::size_t i, double settleEnd, double postLevel, double tolerance) {
    const Index start = transitions.startIndices[i];
    const Index end = transitions.endIndices[i];
    const bool isLast = i + 1 == transitions.startIndices.size();
    const Index lastAllowed = isLast ? span.count - 1 : transitions.startIndices[i + 1];
    const Index j = firstLater.upFrom(end, lastAllowed + 1, settleEnd);
    if (j > lastAllowed || settleEnd < span.t[end]) {
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
    for (std::size_t i = 0; i < transitions.polarities.size(); ++i) {
        const bool falling = transitions.polarities[i] < 1;
        SideAverages& side = falling ? negative : positive;
        const StretchDeviations before = stretches.before(i);
        const StretchDeviations after = stretches.after(i);
        const Deviation& preshoot = falling ? before.over : before.under;
        const double midCross = transitions.midCrossTimes[i];
        const double settleTime =
            findSettleTime(span, transitions, firstLater, i, midCross + settleSeek, stretches.postLevel(i), tolerance);
        // Above the level reached is overshoot and below it undershoot, rising or falling.
        side.preshoot.add(span, preshoot.percent, preshoot.time);
        side.overshoot.add(span, after.over.percent, after.over.time);
        side.undershoot.add(span, after.under.percent, after.under.time);
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
