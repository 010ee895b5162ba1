#include "TriggerCondition.h"

#include <algorithm>
#include <cmath>

#include "QuietRun.h"

namespace deckutil {

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
}

bool TriggerCondition::usesTwoLevels() const {
    return settings.type == TDTC::Transition || settings.type == TDTC::Runt || settings.type == TDTC::Window;
}

void TriggerCondition::configure(const TriggerConditionSettings& newSettings, double level, double lastValue) {
    settings = newSettings;
    const bool lowerHolds =
        lower.setLevel(usesTwoLevels() ? settings.lowerLevel : level, settings.hysteresis, lastValue);
    const bool upperHolds = !usesTwoLevels() || upper.setLevel(settings.upperLevel, settings.hysteresis, lastValue);
    if (!lowerHolds || !upperHolds) {
        upward.open = false;
        downward.open = false;
        timeoutDeadline = infinity;
    }
}

void TriggerCondition::forget() {
    lower.forget();
    upper.forget();
    upward.open = false;
    downward.open = false;
    timeoutDeadline = infinity;
    crossedLast = false;
}

TriggerPoints TriggerCondition::advance(double t0, double x0, double t1, double x1) {
    const Interval interval{t0, x0, t1, x1};
    TriggerPoints points;
    switch (settings.type) {
        case TDTC::Edge:
            advanceEdge(interval, points);
            break;
        case TDTC::PulseWidth:
            advancePulseWidth(interval, points);
            break;
        case TDTC::Transition:
            advanceTransition(interval, points);
            break;
        case TDTC::Runt:
            advanceRunt(interval, points);
            break;
        case TDTC::Window:
            advanceWindow(interval, points);
            break;
        case TDTC::Timeout:
            advanceTimeout(interval, points);
            break;
    }
    return points;
}

/// Ends a stretch; it is a trigger point if it lasted as long as asked for.
void TriggerCondition::close(Stretch& stretch, double end, TDTC::PolarityEnum polarity, TriggerPoints& points) const {
    const double duration = end - stretch.start;
    if (stretch.open && wants(polarity) && duration >= settings.minTime && duration <= settings.maxTime) {
        points.add(end);
    }
    stretch.open = false;
}

void TriggerCondition::advanceEdge(const Interval& interval, TriggerPoints& points) {
    const Crossing crossing = lower.advance(interval.x1);
    if ((crossing == Crossing::Rising && wants(TDTC::Positive)) ||
        (crossing == Crossing::Falling && wants(TDTC::Negative))) {
        points.add(interval.crossing(lower));
    }
}

void TriggerCondition::advancePulseWidth(const Interval& interval, TriggerPoints& points) {
    const Crossing crossing = lower.advance(interval.x1);
    if (crossing == Crossing::None) {
        return;
    }
    const double time = interval.crossing(lower);
    if (crossing == Crossing::Rising) {
        close(downward, time, TDTC::Negative, points);
        upward.begin(time);
    } else {
        close(upward, time, TDTC::Positive, points);
        downward.begin(time);
    }
}

void TriggerCondition::advanceTransition(const Interval& interval, TriggerPoints& points) {
    const Crossing lowerCrossing = lower.advance(interval.x1);
    const Crossing upperCrossing = upper.advance(interval.x1);
    if (lowerCrossing == Crossing::Rising) {
        upward.begin(interval.crossing(lower));
    }
    if (upperCrossing == Crossing::Falling) {
        downward.begin(interval.crossing(upper));
    }
    if (upperCrossing == Crossing::Rising) {
        close(upward, interval.crossing(upper), TDTC::Positive, points);
        downward.open = false;
    }
    if (lowerCrossing == Crossing::Falling) {
        close(downward, interval.crossing(lower), TDTC::Negative, points);
        upward.open = false;
    }
}

void TriggerCondition::advanceRunt(const Interval& interval, TriggerPoints& points) {
    const Crossing lowerCrossing = lower.advance(interval.x1);
    const Crossing upperCrossing = upper.advance(interval.x1);
    if (lowerCrossing == Crossing::Rising) {
        upward.begin(interval.crossing(lower));
    }
    if (upperCrossing == Crossing::Falling) {
        downward.begin(interval.crossing(upper));
    }
    if (interval.x1 >= settings.upperLevel) {  // a whole pulse, no runt
        upward.open = false;
    }
    if (interval.x1 <= settings.lowerLevel) {
        downward.open = false;
    }
    if (lowerCrossing == Crossing::Falling) {
        close(upward, interval.crossing(lower), TDTC::Positive, points);
    }
    if (upperCrossing == Crossing::Rising) {
        close(downward, interval.crossing(upper), TDTC::Negative, points);
    }
}

void TriggerCondition::advanceWindow(const Interval& interval, TriggerPoints& points) {
    const Crossing lowerCrossing = lower.advance(interval.x1);
    const Crossing upperCrossing = upper.advance(interval.x1);
    const bool lowerWanted = (lowerCrossing == Crossing::Rising && wants(TDTC::Positive)) ||
                             (lowerCrossing == Crossing::Falling && wants(TDTC::Negative));
    const bool upperWanted = (upperCrossing == Crossing::Falling && wants(TDTC::Positive)) ||
                             (upperCrossing == Crossing::Rising && wants(TDTC::Negative));
    if (lowerWanted) {
        points.add(interval.crossing(lower));
    }
    if (upperWanted) {
        points.add(interval.crossing(upper));
    }
    points.sort();
}

void TriggerCondition::advanceTimeout(const Interval& interval, TriggerPoints& points) {
    const Crossing crossing = lower.advance(interval.x1);
    const double stayEnd = crossing == Crossing::None ? interval.t1 : interval.crossing(lower);
    if (timeoutDeadline <= stayEnd) {
        points.add(timeoutDeadline);
        timeoutDeadline = infinity;
    }
    if (crossing == Crossing::None) {
        return;
    }
    timeoutDeadline = infinity;
    if (wants(crossing == Crossing::Rising ? TDTC::Positive : TDTC::Negative)) {
        timeoutDeadline = stayEnd + settings.timeout;
    }
    if (timeoutDeadline <= interval.t1) {  // shorter than the rest of this interval
        points.add(timeoutDeadline);
        timeoutDeadline = infinity;
    }
}

void TriggerCondition::resume(const double* times, const double* values, std::size_t n) {
    forget();
    advance(times[0], values[0], times[0], values[0]);
    constexpr std::size_t fewSamples = 4;  // where much happens a run is not worth its beginning
    for (std::size_t i = 1; i < n;) {
        for (const std::size_t end = std::min(n, i + fewSamples); i < end; ++i) {
            advance(times[i - 1], values[i - 1], times[i], values[i]);
        }
        ValueRange passed{};
        i += quietRun()(times + i, values + i, n - i, times[i - 1], {lowFence(), highFence(), deadline()}, passed);
    }
}

/// Without stretches the side of each level is all that is to be known: the last sample that settles it.
std::size_t TriggerCondition::lastThatSettlesSides(const double* values, std::size_t n) const {
    bool needsLower = true;
    bool needsUpper = usesTwoLevels();
    for (std::size_t i = n; i-- > 0;) {
        needsLower = needsLower && lower.settledSide(values[i]) == 0;
        needsUpper = needsUpper && upper.settledSide(values[i]) == 0;
        if (!needsLower && !needsUpper) {
            return i;
        }
    }
    return n;
}

/// A signal that goes from below all levels to above them, or back, crosses each of them between, and behind that no
/// stretch is open but that of a pulse or a timeout, which the crossing itself began. So it is enough to begin with the
/// last sample on the other side of all levels than the last that lies on a side of them at all.
std::size_t TriggerCondition::lastSwing(const double* values, std::size_t n) const {
    const bool hasTwo = usesTwoLevels();
    if (hasTwo && !(lower.getLevel() <= upper.getLevel())) {
        return n;
    }
    int lastSide = 0;
    for (std::size_t i = n; i-- > 0;) {
        const int side = lower.settledSide(values[i]);
        if (side == 0 || (hasTwo && upper.settledSide(values[i]) != side)) {
            continue;
        }
        if (lastSide == 0) {
            lastSide = side;
        } else if (side != lastSide) {
            return i;
        }
    }
    return n;
}

double TriggerCondition::earliestPoint(double time) const {
    if (settings.type == TDTC::Timeout) {
        return std::min(timeoutDeadline, time + settings.timeout);
    }
    if (hasNoStretches() || settings.minTime <= 0.0) {
        return time;
    }
    double begin = time;
    for (const Stretch& stretch : {upward, downward}) {
        begin = stretch.open ? std::min(begin, stretch.start) : begin;
    }
    const double end = begin + settings.minTime;
    constexpr double rounding = 0x1p-50;  // of the sum here and of the difference that a duration is
    return end - rounding * std::abs(end);
}

double TriggerCondition::lowFence() const {
    double fence = lower.lowFence();
    if (usesTwoLevels()) {
        fence = std::max(fence, upper.lowFence());
        if (settings.type == TDTC::Runt && downward.open) {
            fence = std::max(fence, settings.lowerLevel);
        }
    }
    return fence;
}

double TriggerCondition::highFence() const {
    double fence = lower.highFence();
    if (usesTwoLevels()) {
        fence = std::min(fence, upper.highFence());
        if (settings.type == TDTC::Runt && upward.open) {
            fence = std::min(fence, settings.upperLevel);
        }
    }
    return fence;
}

}  // namespace deckutil
