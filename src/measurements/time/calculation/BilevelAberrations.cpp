#include "BilevelAberrations.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "ExtremeScan.h"
#include "SpanKernels.h"

namespace dspwavedecks {

namespace {

constexpr double unmeasured = bilevelMeasurementsStruct::unmeasured;
/// Length of the stretches before and after a transition, in durations of the transition.
constexpr double stretchDurations = 3.0;

ExtremeValues scanStretch(const BilevelSpan& span, const SpanKernels& kernels, std::ptrdiff_t first,
                          std::ptrdiff_t last) {
    const auto count = static_cast<std::size_t>(last - first + 1);
    if (count <= edgeSamples && first + static_cast<std::ptrdiff_t>(edgeSamples) <= span.count) {
        const ScannedExtremes few = kernels.scanFew(span.x + first, count);
        if (!few.hasNaN) {
            return {few.minimum, few.maximum, false};
        }
    }
    return findExtremeValues(span.x + first, count);
}

}  // namespace

BilevelAberrations::BilevelAberrations(const BilevelSpan& measuredSpan, const BilevelLevels& stateLevels,
                                       const Settling& settlingLimits, bool timesRise)
    : span(measuredSpan),
      levels(stateLevels),
      settling(settlingLimits),
      kernels(spanKernels()),
      hasRisingTimes(timesRise),
      edges{sideLevels(-1), sideLevels(1)},
      firstLater(span, timesRise) {}

BilevelAberrations::SideLevels BilevelAberrations::sideLevels(int polarity) const {
    return {levelByPolarity(levels.lowStateBound, levels.highStateBound, polarity),
            levelByPolarity(levels.highStateBound, levels.lowStateBound, polarity),
            levelByPolarity(levels.low, levels.high, polarity), levelByPolarity(levels.high, levels.low, polarity)};
}

void BilevelAberrations::add(std::span<const BilevelTransition> transitions, Index nextStart) {
    const std::size_t added = transitions.size();
    const auto startBehind = [&](std::size_t i) { return i + 1 < added ? transitions[i + 1].start : nextStart; };
    // In two loops, so that the second one doesn't wait for what the first one finds.
    stretches.resize(added);
    for (std::size_t i = 0; i < added; ++i) {
        stretches[i] = {before(transitions[i]), after(transitions[i], startBehind(i))};
        pass(transitions[i]);
    }
    for (std::size_t i = 0; i < added; ++i) {
        const BilevelTransition& transition = transitions[i];
        if (hasRisingTimes) {
            addDeviations(transition.rising, stretches[i]);
        } else {
            addDeviationsInSpan(transition.rising, stretches[i]);
        }
        const double settleTime = findSettleTime(transition, startBehind(i));
        addInSpan(sides[transition.rising ? 1 : 0].settlingTime, settleTime - transition.midCrossTime, settleTime);
    }
}

/// Where times rise all of them lie in the span.
void BilevelAberrations::addDeviations(bool rising, const Stretches& about) {
    const SideLevels& edge = edges[rising ? 1 : 0];
    const ExtremeValues before = scanStretch(span, kernels, about.before.first, about.before.last);
    const ExtremeValues after = scanStretch(span, kernels, about.after.first, about.after.last);
    Side& side = sides[rising ? 1 : 0];
    side.preshoot.add(percent(rising ? edge.before - before.minimum : before.maximum - edge.before));
    // Above the level reached is overshoot and below it undershoot, rising or falling.
    side.overshoot.add(percent(after.maximum - edge.after));
    side.undershoot.add(percent(edge.after - after.minimum));
}

void BilevelAberrations::addDeviationsInSpan(bool rising, const Stretches& about) {
    const SideLevels& edge = edges[rising ? 1 : 0];
    const auto extremesOf = [this](const Stretch& stretch) {
        const auto count = static_cast<std::size_t>(stretch.last - stretch.first + 1);
        const ExtremePositions extremes = findExtremes(span.x + stretch.first, count, MinMaxLastMaximum);
        return Stretch{stretch.first + static_cast<Index>(extremes.minimum),
                       stretch.first + static_cast<Index>(extremes.maximum)};
    };
    const auto [minimumBefore, maximumBefore] = extremesOf(about.before);
    const auto [minimum, maximum] = extremesOf(about.after);
    Side& side = sides[rising ? 1 : 0];
    if (rising) {
        addInSpan(side.preshoot, percent(edge.before - span.x[minimumBefore]), span.t[minimumBefore]);
    } else {
        addInSpan(side.preshoot, percent(span.x[maximumBefore] - edge.before), span.t[maximumBefore]);
    }
    addInSpan(side.overshoot, percent(span.x[maximum] - edge.after), span.t[maximum]);
    addInSpan(side.undershoot, percent(edge.after - span.x[minimum]), span.t[minimum]);
}

void BilevelAberrations::addInSpan(Average& average, double value, double time) const {
    if (span.contains(time)) {
        average.add(value);
    }
}

BilevelAberrations::Stretch BilevelAberrations::before(const BilevelTransition& transition) const {
    const SideLevels& edge = edges[transition.rising ? 1 : 0];
    const Index start = transition.start;
    const double from = span.crossing(edge.startBound, start) - stretchDurations * transition.duration;
    const Index first = latestPassed > from ? passed : firstLater.between(passed, start, from, start);
    return {first, start};
}

/// Stretches from the third transition on begin behind the transition before, but the second one's may reach back over
/// the first one. Meant so.
void BilevelAberrations::pass(const BilevelTransition& transition) {
    if (isFirst) {
        isFirst = false;
        return;
    }
    // Where times rise, a search from there on says the same as one from the start of the span.
    if (!hasRisingTimes) {
        const auto later = [](double latest, double time) { return time > latest ? time : latest; };
        latestPassed = std::accumulate(span.t + passed, span.t + transition.end, latestPassed, later);
    }
    passed = transition.end;
}

BilevelAberrations::Stretch BilevelAberrations::after(const BilevelTransition& transition, Index nextStart) const {
    const SideLevels& edge = edges[transition.rising ? 1 : 0];
    const Index end = transition.end;
    const double until = span.crossing(edge.endBound, end - 1) + stretchDurations * transition.duration;
    const Index limit = firstLater.between(end, nextStart, until, end);
    return {end, limit > end ? limit - 1 : limit};
}

/// Time at which the waveform enters the band of +- tolerance about the level reached, for good up to the end of the
/// seek; NaN if it is outside then, or if the seek ends before the transition's end or beyond the next transition or
/// the span.
double BilevelAberrations::findSettleTime(const BilevelTransition& transition, Index nextStart) const {
    const double settleEnd = transition.midCrossTime + settling.seek;
    const double level = edges[transition.rising ? 1 : 0].after;
    const Index lastAllowed = std::min(nextStart, span.count - 1);
    if (settleEnd < span.t[transition.end] || (hasRisingTimes && !(span.t[lastAllowed] > settleEnd))) {
        return unmeasured;
    }
    const Index j = firstLater.between(transition.end, lastAllowed + 1, settleEnd, transition.end);
    if (j > lastAllowed) {
        return unmeasured;
    }
    Index k = j;
    while (k >= transition.start && !(std::fabs(span.x[k] - level) > settling.tolerance)) {
        --k;
    }
    if (k < transition.start) {
        k = 0;  // never outside: the interpolation is made on the first interval of the span. Meant so.
    }
    if (k == j) {
        return unmeasured;
    }
    const double error = span.x[k] - level;
    const double step = (span.x[k + 1] - level) - error;
    if (step == 0.0) {
        return unmeasured;
    }
    const double target = error < 0.0 ? -settling.tolerance : error > 0.0 ? settling.tolerance : 0.0;
    return span.t[k] + (target - error) * (span.t[k + 1] - span.t[k]) / step;
}

/// Of the amplitude.
double BilevelAberrations::percent(double difference) const {
    return levels.amplitude == 0.0 ? unmeasured : difference / levels.amplitude * 100.0;
}

/// The settling time is left unmeasured also when the sum is exactly 0; meant so.
double BilevelAberrations::Side::meanSettlingTime() const {
    return settlingTime.count != 0.0 && settlingTime.sum != 0.0 ? settlingTime.mean() : unmeasured;
}

void BilevelAberrations::write(bilevelMeasurementsStruct& metrics) const {
    const Side& positive = sides[1];
    metrics.posPreshoot = positive.preshoot.mean();
    metrics.posOvershoot = positive.overshoot.mean();
    metrics.posUndershoot = positive.undershoot.mean();
    metrics.posSettlingTime = positive.meanSettlingTime();
    const Side& negative = sides[0];
    metrics.negPreshoot = negative.preshoot.mean();
    metrics.negOvershoot = negative.overshoot.mean();
    metrics.negUndershoot = negative.undershoot.mean();
    metrics.negSettlingTime = negative.meanSettlingTime();
}

}  // namespace dspwavedecks
