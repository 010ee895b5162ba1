#include "TimeDomainTriggerController.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace deckutil {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Fewer are quicker taken one by one than passed over.
constexpr std::size_t fewSamples = 8;

bool isLength(double timeRange) {
    return timeRange > 0.0 && timeRange < infinity;
}

}  // namespace

template <class Value>
void TimeDomainTriggerController::change(Value& setting, const Value& newValue) {
    if (setting != newValue) {
        setting = newValue;
        settingsChanged = true;
        makeNextSampleEventful();
    }
}

void TimeDomainTriggerController::setMode(TDTC::ModeEnum newMode) {
    if (newMode != mode) {
        discardWaiting();
        hasHistory = hasHistory && newMode != TDTC::Off;  // samples that pass meanwhile are not held
    }
    change(mode, newMode);
}

void TimeDomainTriggerController::setType(TDTC::TypeEnum type) {
    if (type != settings.type) {
        discardWaiting();
    }
    change(settings.type, type);
}

void TimeDomainTriggerController::setPolarity(TDTC::PolarityEnum polarity) {
    if (polarity != settings.polarity) {
        discardWaiting();
    }
    change(settings.polarity, polarity);
}

void TimeDomainTriggerController::setPosition(double fraction) {
    change(position, fraction);
}
void TimeDomainTriggerController::setDelay(double seconds) {
    change(delay, seconds);
}
void TimeDomainTriggerController::setAutoLevel(bool automatic) {
    change(autoLevel, automatic);
}
void TimeDomainTriggerController::setLevel(double newLevel) {
    change(level, newLevel);
}
void TimeDomainTriggerController::setHysteresis(double distance) {
    change(settings.hysteresis, distance);
}
void TimeDomainTriggerController::setUpperLevel(double newLevel) {
    change(settings.upperLevel, newLevel);
}
void TimeDomainTriggerController::setLowerLevel(double newLevel) {
    change(settings.lowerLevel, newLevel);
}
void TimeDomainTriggerController::setMinTime(double seconds) {
    change(settings.minTime, seconds);
}
void TimeDomainTriggerController::setMaxTime(double seconds) {
    change(settings.maxTime, seconds);
}
void TimeDomainTriggerController::setTimeout(double seconds) {
    change(settings.timeout, seconds);
}
void TimeDomainTriggerController::setHoldoff(double seconds) {
    change(holdoff, seconds);
}

double TimeDomainTriggerController::getLevel() const {
    return autoLevel && !std::isnan(automaticLevel) ? automaticLevel : level;
}

/// Drops what was found so far: the condition begins anew with the next sample, and the trigger is armed from the last
/// one on.
void TimeDomainTriggerController::discardWaiting() {
    beginGap();
    waiting.clear();
    hasLeftOver = false;
    armedFrom = lastTime;
    lastTriggerTime = -infinity;
}

void TimeDomainTriggerController::startAfresh(double time) {
    lastTime = time;
    discardWaiting();
    firstTime = hasHistory ? std::min(firstTime, time) : time;
    hasHistory = true;
    rangeStart = time;
    rangeLow = infinity;
    rangeHigh = -infinity;
}

/// Nothing is interpolated across a gap, and what the condition has seen before it does not count behind it.
void TimeDomainTriggerController::beginGap() {
    condition.forget();
    hasSample = false;
}

void TimeDomainTriggerController::processEventfulSample(double time, double value, double timeRange) {
    if (mode == TDTC::Off) {
        return;
    }
    if (!std::isfinite(time)) {
        beginGap();
        makeNextSampleEventful();
        return;
    }
    if (!hasHistory || time < lastTime) {
        startAfresh(time);
    }
    if (hasLeftOver) {
        while (!waiting.empty() && windowOf(waiting.front(), requestTimeRange).end <= requestTime) {
            waiting.popFront();
        }
        hasLeftOver = false;
    }
    if (!waiting.empty() && (settingsChanged || timeRange != sampleTimeRange)) {
        armBehind(waiting.back(), windowOf(waiting.back(), timeRange));
    }
    sampleTimeRange = timeRange;
    if (!std::isfinite(value)) {
        beginGap();
    }
    updateAutomaticLevel(time, value);
    if (settingsChanged) {
        applySettings();
    }
    if (std::isfinite(value)) {
        const TriggerPoints points = hasSample ? condition.advance(lastTime, lastValue, time, value)
                                               : condition.advance(time, value, time, value);
        for (std::size_t i = 0; i < points.count; ++i) {
            acceptTrigger(points.times[i]);
        }
        hasSample = true;
        lastValue = value;
    }
    lastTime = time;
    if (mode == TDTC::Auto && isLength(timeRange) && time >= rearmTime() + timeRange) {
        runFree(time);
    }
    updateQuietRange();
}

/// Takes over the samples at the begin of a block that lie in the bounds, for all but the condition; returns how many.
std::size_t TimeDomainTriggerController::passOver(const SampleBlock& block, const QuietBounds& bounds) {
    ValueRange range{rangeLow, rangeHigh};
    const std::size_t passed = quietRun()(block.times, block.values, block.count, lastTime, bounds, range);
    keepPassed(block, passed, range);
    return passed;
}

void TimeDomainTriggerController::keepPassed(const SampleBlock& block, std::size_t passed, const ValueRange& range) {
    if (passed > 0) {
        rangeLow = range.low;
        rangeHigh = range.high;
        lastTime = block.times[passed - 1];
        lastValue = block.values[passed - 1];
    }
}

/// The time before which no trigger point can lie, or none that would count, and nothing else is to be decided.
double TimeDomainTriggerController::idleUntil() const {
    if (!hasSample || settingsChanged || hasLeftOver || mode == TDTC::Off || !isLength(sampleTimeRange)) {
        return -infinity;
    }
    return std::min(std::max(countsFrom(), condition.earliestPoint(lastTime)), nextDecision);
}

/// No trigger point before this time counts, as things stand.
double TimeDomainTriggerController::countsFrom() const {
    return isArmed() ? std::max(rearmTime(), filledFrom()) : infinity;
}

/// No trigger point before this time has a window that begins with or behind the first sample.
double TimeDomainTriggerController::filledFrom() const {
    const double before = position * sampleTimeRange;
    constexpr double rounding = 0x1p-49;  // of the sums here and in windowOf()
    return firstTime - delay + before - rounding * (std::fabs(firstTime) + std::fabs(delay) + std::fabs(before));
}

/// Whether it is worth passing over samples among which no trigger point would count: there must be more than a block
/// of them, or for conditions without stretches a few up to the end of the frame.
bool TimeDomainTriggerController::isIdleForLong(const SampleBlock& block) const {
    const std::size_t few = condition.hasNoStretches() ? fewSamples : blockSamples;
    if (block.count <= few) {
        return false;
    }
    const double last = block.times[std::min(block.count - 1, blockSamples)];
    return last < nextDecision && last < idleUntil();
}

/// Passes over the samples at the begin of a block among which no trigger point would count, if the last ones tell all
/// that the condition has to know of them. Returns how many there are, and whether they have been passed over.
std::pair<std::size_t, bool> TimeDomainTriggerController::passOverIdle(const SampleBlock& block) {
    ValueRange range{rangeLow, rangeHigh};
    const std::size_t idle =
        quietRun()(block.times, block.values, block.count, lastTime, {-infinity, infinity, idleUntil()}, range);
    const std::size_t first = idle > (condition.hasNoStretches() ? fewSamples : blockSamples)
                                  ? condition.firstThatCounts(block.values, idle)
                                  : idle;
    if (first == idle) {
        return {idle, false};
    }
    condition.resume(block.times + first, block.values + first, idle - first);
    keepPassed(block, idle, range);
    updateQuietRange();
    return {idle, true};
}

/// Takes samples at the begin of a block, 64 at most, whatever they do to the condition; returns how many.
std::size_t TimeDomainTriggerController::takeTogether(const SampleBlock& block) {
    ValueRange range{rangeLow, rangeHigh};
    const std::size_t taken = quietRun()(block.times, block.values, std::min(block.count, blockSamples), lastTime,
                                         {-infinity, infinity, nextDecision}, range);
    if (taken == 0) {
        return 0;
    }
    const SampleBlock valid{block.times, block.values, taken};
    if (condition.hasNoStretches()) {
        acceptCrossings(valid);
    } else {
        acceptStretches(valid);
    }
    keepPassed(block, taken, range);
    if (condition.crossesOften()) {
        updateDecisions();
        quietLow = infinity;
        quietHigh = -infinity;
    } else {
        updateQuietRange();
    }
    return taken;
}

/// Every crossing triggers, and behind it nothing counts for a while: only the first that does is worked out.
void TimeDomainTriggerController::acceptCrossings(const SampleBlock& block) {
    const BlockCrossings crossings = condition.advanceBlock(block);
    std::uint64_t left = (crossings.atLower | crossings.atUpper) & block.notBefore(countsFrom());
    while (left != 0) {
        const TriggerPoints points = condition.pointsAt(block, crossings, std::countr_zero(left));
        left &= left - 1;
        bool anyCounts = false;
        for (std::size_t i = 0; i < points.count; ++i) {
            anyCounts |= acceptTrigger(points.times[i]);
        }
        // Behind a window that ends before its trigger point the next crossing counts already.
        if (anyCounts && left != 0 && block.times[std::countr_zero(left)] < countsFrom()) {
            left &= block.notBefore(countsFrom());
        }
    }
}

void TimeDomainTriggerController::acceptStretches(const SampleBlock& block) {
    TriggerBlockPoints points;
    condition.advanceBlock(block, countsFrom(), points);
    for (std::size_t i = 0; i < points.count; ++i) {
        acceptTrigger(points.times[i]);
    }
}

void TimeDomainTriggerController::processSamples(const double* times, const double* values, std::size_t n,
                                                 double timeRange) {
    if (mode == TDTC::Off) {
        return;
    }
    std::size_t notIdleUntil = 0;
    const auto rest = [&](std::size_t i) { return SampleBlock{times + i, values + i, n - i}; };
    for (std::size_t i = 0; i < n;) {
        if (timeRange == sampleTimeRange) {
            if (times[i] >= nextDecision) {
                renewAutomaticLevel(times[i], values[i]);
            }
            if (i >= notIdleUntil && isIdleForLong(rest(i))) {
                const auto [idle, isPassed] = passOverIdle(rest(i));
                if (isPassed) {
                    i += idle;
                    continue;
                }
                notIdleUntil = i + idle;
            }
            const bool isTracked = lastTime < unarmedUntil;  // then the fences have not followed
            if (!isTracked && !condition.crossesOften()) {
                i += passOver(rest(i), {quietLow, quietHigh, quietUntil});
            }
            const std::size_t taken = i > 0 ? takeTogether(rest(i)) : 0;  // it needs the sample before
            if (taken > 0) {
                i += taken;
                continue;
            }
        }
        if (i < n) {
            processSample(times[i], values[i], times[i], timeRange);
            ++i;
        }
    }
}

/// Takes the middle of the range of each full stretch of one time range, so that the level stands still between them.
/// Returns whether the sample at a time begins another one.
bool TimeDomainTriggerController::beginRangeStretch(double time) {
    if (!isLength(sampleTimeRange) || !(time >= rangeStart + sampleTimeRange)) {
        return false;
    }
    if (rangeLow <= rangeHigh) {
        const double middle = 0.5 * rangeLow + 0.5 * rangeHigh;
        settingsChanged = settingsChanged || (autoLevel && !(middle == automaticLevel));
        automaticLevel = middle;
    }
    rangeStart = time;
    rangeLow = infinity;
    rangeHigh = -infinity;
    return true;
}

/// Does what the next sample, which comes in a frame, does to the automatic level, if that is all that it has to be
/// looked at alone for.
void TimeDomainTriggerController::renewAutomaticLevel(double time, double value) {
    const bool isPlain = hasSample && !settingsChanged && !hasLeftOver && mode != TDTC::Off;
    if (isPlain && time >= lastTime && time < infinity && std::isfinite(value) && beginRangeStretch(time)) {
        if (settingsChanged) {
            applySettings();
        }
        updateQuietRange();
    }
}

void TimeDomainTriggerController::updateAutomaticLevel(double time, double value) {
    beginRangeStretch(time);
    if (std::isfinite(value)) {
        rangeLow = std::min(rangeLow, value);
        rangeHigh = std::max(rangeHigh, value);
    }
}

void TimeDomainTriggerController::applySettings() {
    const double levelInUse = autoLevel ? automaticLevel : level;
    condition.configure(settings, levelInUse, hasSample ? lastValue : notANumber);
    settingsChanged = false;
}

double TimeDomainTriggerController::rearmTime() const {
    return std::max(armedFrom, lastTriggerTime + holdoff);
}

/// Returns whether the point counts.
bool TimeDomainTriggerController::acceptTrigger(double time) {
    if (!isArmed() || !isLength(sampleTimeRange) || !(time >= rearmTime())) {
        return false;
    }
    const PendingTrigger trigger{time, false};
    const TimeWindow window = windowOf(trigger, sampleTimeRange);
    if (!(window.start >= firstTime)) {
        return false;
    }
    waiting.push(trigger);
    armBehind(trigger, window);
    lastTriggerTime = time;
    return true;
}

/// No trigger counts inside the window before. While that one waits it follows the settings, and this with it.
void TimeDomainTriggerController::armBehind(const PendingTrigger& trigger, const TimeWindow& window) {
    armedFrom = std::max(trigger.time, window.end);
}

void TimeDomainTriggerController::runFree(double time) {
    waiting.push({time, true});
    armedFrom = time;
}

TimeDomainTriggerController::TimeWindow TimeDomainTriggerController::windowOf(const PendingTrigger& trigger,
                                                                              double timeRange) const {
    if (trigger.freeRun) {
        return {trigger.time - timeRange, trigger.time};
    }
    const double start = trigger.time + delay - position * timeRange;
    return {start, start + timeRange};
}

/// A window that ends too early, with the trigger point in its position still; NaN if the point lies past the end.
TimeDomainTriggerController::TimeWindow TimeDomainTriggerController::cutWindow(const PendingTrigger& trigger,
                                                                               double endTime) const {
    const double point = trigger.time + delay;
    const double length = (endTime - point) / (1.0 - position);
    return length > 0.0 && length < infinity ? TimeWindow{point - position * length, endTime} : TimeWindow{};
}

void TimeDomainTriggerController::getTriggerWindow(double /*reserved*/, double lastSampleTime, double timeRange,
                                                   bool flush, double& start, double& end) {
    start = notANumber;
    end = notANumber;
    if (waiting.empty() || !isLength(timeRange)) {
        return;
    }
    const PendingTrigger trigger = waiting.front();
    TimeWindow window = windowOf(trigger, timeRange);
    if (!(window.end <= lastSampleTime)) {
        if (!flush) {
            return;
        }
        window = cutWindow(trigger, lastSampleTime);
    }
    waiting.popFront();
    if (std::isfinite(window.start) && std::isfinite(window.end)) {
        start = window.start;
        end = window.end;
        lastWindow = window;
        enableOnceMode = enableOnceMode && mode != TDTC::Once;
        if (waiting.empty()) {
            armBehind(trigger, window);
        }
    }
    requestTime = lastSampleTime;
    requestTimeRange = timeRange;
    hasLeftOver = !waiting.empty() && windowOf(waiting.front(), timeRange).end <= lastSampleTime;
    makeNextSampleEventful();  // it drops them
}

void TimeDomainTriggerController::getLastTriggerWindow(double& start, double& end) const {
    start = lastWindow.start;
    end = lastWindow.end;
}

void TimeDomainTriggerController::makeNextSampleEventful() {
    nextDecision = -infinity;
    quietUntil = -infinity;
    unarmedUntil = -infinity;
}

void TimeDomainTriggerController::updateQuietRange() {
    quietLow = condition.lowFence();
    quietHigh = condition.highFence();
    updateDecisions();
}

void TimeDomainTriggerController::updateDecisions() {
    makeNextSampleEventful();
    if (!hasSample) {  // behind a gap
        return;
    }
    nextDecision = infinity;
    if (isLength(sampleTimeRange)) {
        nextDecision = rangeStart + sampleTimeRange;
        if (mode == TDTC::Auto) {
            nextDecision = std::min(nextDecision, rearmTime() + sampleTimeRange);
        }
    }
    quietUntil = std::min(nextDecision, condition.deadline());
    if (condition.hasNoStretches() && rearmTime() > lastTime) {
        unarmedUntil = std::min(quietUntil, rearmTime());
        quietUntil = unarmedUntil;  // the fences don't follow what is tracked until then
    }
}

}  // namespace deckutil
