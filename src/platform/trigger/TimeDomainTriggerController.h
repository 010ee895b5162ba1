#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "QuietRun.h"
#include "TriggerCondition.h"
#include "TriggerEnums.h"
#include "TriggerEventRing.h"

namespace deckutil {

/// The trigger of a time display: takes the samples of one channel, finds the points at which a condition is fulfilled
/// (TriggerCondition) and cuts a window of time around each:
///   start = trigger time + delay - position * time range,  end = start + time range
/// Like an oscilloscope it takes one window at a time. A point counts as a trigger only if
///   - its window begins no earlier than the first sample (the stretch before the trigger has been filled),
///   - it lies at or after the end of the window before, and at least the hold-off after the trigger before,
///   - in the mode "once", the engine is armed.
/// In the mode "auto" a window that ends with the newest sample is made when nothing has triggered for one time range.
///
/// All decisions are made sample by sample, so that frames of any size give the same triggers. A sample whose time or
/// value is not finite is a gap, behind which the condition begins anew; time that falls back starts the trigger
/// afresh. Windows wait in a fixed ring of 1024: nothing is allocated after construction.
class TimeDomainTriggerController {
public:
    /// Nothing triggers any more in the mode "off"; any change of mode discards what waits.
    void setMode(TDTC::ModeEnum newMode);
    TDTC::ModeEnum getMode() const { return mode; }

    /// For the mode "once": true arms a single event. Handing out its window turns it false.
    void setEnableOnceMode(bool enable) { enableOnceMode = enable; }
    bool getEnableOnceMode() const { return enableOnceMode; }

    /// Condition and polarity: a change discards what waits.
    void setType(TDTC::TypeEnum type);
    void setPolarity(TDTC::PolarityEnum polarity);

    /// Fraction of the window, 0 to 1, at which the trigger point lies.
    void setPosition(double fraction);
    double getPosition() const { return position; }

    /// Automatic level of edge, pulse width and timeout: the middle of the range that the signal had in the last full
    /// stretch of one time range. Nothing triggers before the first such stretch has passed.
    void setAutoLevel(bool automatic);
    void setLevel(double newLevel);
    /// The level in use.
    double getLevel() const;

    /// Distance from a level, in the signal's unit, from which the signal must come to cross it.
    void setHysteresis(double distance);

    /// The two levels of transition, runt and window.
    void setUpperLevel(double level);
    void setLowerLevel(double level);
    double getUpperLevel() const { return settings.upperLevel; }
    double getLowerLevel() const { return settings.lowerLevel; }

    /// Bounds of the duration of pulses, transitions and runts, s, both included.
    void setMinTime(double seconds);
    void setMaxTime(double seconds);

    /// How long the signal must stay on its side of the level, s.
    void setTimeout(double seconds);
    /// From the trigger to the point of the window at which the position lies, s; negative for earlier.
    void setDelay(double seconds);
    /// Least time from one trigger to the next, s.
    void setHoldoff(double seconds);

    /// Takes one sample. The third argument is reserved: callers pass the sample's time again.
    /// timeRange  length of the window, s; without a positive, finite one nothing triggers
    void processSample(double time, double value, double /*reserved*/, double timeRange) {
        if (time >= lastTime && timeRange == sampleTimeRange) {  // fails for NaN, as do the comparisons below
            if (time < unarmedUntil && std::fabs(value) < std::numeric_limits<double>::infinity()) {
                condition.track(value);
                keepSample(time, value);
                return;
            }
            // Most samples touch nothing: they lie between the fences of the condition and before its next deadline.
            if (value > quietLow && value < quietHigh && time < quietUntil) {
                keepSample(time, value);
                return;
            }
        }
        processEventfulSample(time, value, timeRange);
    }

    /// Takes samples one after the other: the same as processSample() for each of times [n] and values [n]. Stretches
    /// in which nothing can happen, or in which nothing that happens would count, are passed over whole.
    void processSamples(const double* times, const double* values, std::size_t n, double timeRange);

    /// Hands out the oldest window that is due, that is one that ends no later than lastTime; NaN for both ends if
    /// there is none. Asked again before the next sample it hands out the next one; due windows not asked for by then
    /// are dropped, so that a display never lags behind. The first argument is reserved.
    /// flush  also hand out an incomplete window, cut to end at lastTime with the trigger point in its position
    void getTriggerWindow(double reserved, double lastTime, double timeRange, bool flush, double& start, double& end);

    /// The window handed out last; NaN before the first.
    void getLastTriggerWindow(double& start, double& end) const;

private:
    struct TimeWindow {
        double start = std::numeric_limits<double>::quiet_NaN();
        double end = std::numeric_limits<double>::quiet_NaN();
    };

    void keepSample(double time, double value) {
        lastTime = time;
        lastValue = value;
        if (value < rangeLow) {
            rangeLow = value;
        }
        if (value > rangeHigh) {
            rangeHigh = value;
        }
    }
    void processEventfulSample(double time, double value, double timeRange);
    std::size_t passOver(const SampleBlock& block, const QuietBounds& bounds);
    std::pair<std::size_t, bool> passOverIdle(const SampleBlock& block);
    std::size_t takeTogether(const SampleBlock& block);
    void acceptCrossings(const SampleBlock& block);
    void acceptStretches(const SampleBlock& block);
    double countsFrom() const;
    bool isArmed() const { return mode != TDTC::Once || (enableOnceMode && waiting.empty()); }
    double filledFrom() const;
    double idleUntil() const;
    bool isIdleForLong(const SampleBlock& block) const;
    void keepPassed(const SampleBlock& block, std::size_t passed, const ValueRange& range);
    void startAfresh(double time);
    void beginGap();
    void discardWaiting();
    bool beginRangeStretch(double time);
    void renewAutomaticLevel(double time, double value);
    void updateAutomaticLevel(double time, double value);
    bool acceptTrigger(double time);
    void armBehind(const PendingTrigger& trigger, const TimeWindow& window);
    void runFree(double time);
    double rearmTime() const;
    TimeWindow windowOf(const PendingTrigger& trigger, double timeRange) const;
    TimeWindow cutWindow(const PendingTrigger& trigger, double endTime) const;
    void applySettings();
    void makeNextSampleEventful();
    void updateQuietRange();
    void updateDecisions();
    template <class Value>
    void change(Value& setting, const Value& newValue);

    // Options.
    TDTC::ModeEnum mode = TDTC::Auto;
    bool enableOnceMode = true;
    bool autoLevel = true;
    double level = 0.0;
    double position = 0.5;
    double delay = 0.0;
    double holdoff = 0.0;
    TriggerConditionSettings settings;

    // Derived: samples inside these bounds change nothing but the last sample and the range.
    double quietLow = std::numeric_limits<double>::infinity();
    double quietHigh = -std::numeric_limits<double>::infinity();
    double quietUntil = -std::numeric_limits<double>::infinity();
    // Before then a sample concerns the condition, the last sample and the range, and nothing else.
    double nextDecision = -std::numeric_limits<double>::infinity();
    // Until then no trigger point would count, and the condition only needs to know on which side the signal is.
    double unarmedUntil = -std::numeric_limits<double>::infinity();
    bool settingsChanged = true;

    // State.
    TriggerCondition condition;
    TriggerEventRing waiting;
    bool hasSample = false;        ///< lastTime and lastValue hold
    bool hasHistory = false;       ///< firstTime holds
    double firstTime = 0.0;        ///< s, first sample held
    double lastTime = 0.0;         ///< s
    double lastValue = 0.0;        ///< signal's unit
    double sampleTimeRange = 0.0;  ///< s, of the last sample
    double armedFrom = 0.0;        ///< s, end of the last window
    double lastTriggerTime = 0.0;  ///< s, minus infinity before the first
    double rangeStart = 0.0;       ///< s, begin of the stretch whose range is being gathered
    double rangeLow = 0.0;         ///< signal's unit
    double rangeHigh = 0.0;        ///< signal's unit
    double automaticLevel = std::numeric_limits<double>::quiet_NaN();
    bool hasLeftOver = false;       ///< the last request left due windows
    double requestTime = 0.0;       ///< s, of the last request
    double requestTimeRange = 0.0;  ///< s
    TimeWindow lastWindow;
};

}  // namespace deckutil
