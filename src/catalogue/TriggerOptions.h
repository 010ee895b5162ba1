#pragma once

#include "BaseOptions.h"
#include "Option.h"
#include "TimeMeasurementOptions.h"

/// The trigger_filter.
namespace dspwavedecks::catalogue::trigger {

inline constexpr Word modeWords[] = {
    {"auto", 0, "runs free when nothing triggers within a window"},
    {"normal", 1, "waits for each trigger"},
    {"once", 2, "a single trigger until rearmed"},
    {"off", 3},
};
inline constexpr Word typeWords[] = {
    {"edge", 0, "a crossing of the level"},
    {"pulse-width", 1, "a pulse whose width lies within limits"},
    {"transition", 2, "a rise or fall whose duration lies within limits"},
    {"runt", 3, "a pulse that reaches one level and not the other"},
    {"window", 4, "an entry into the band between the levels, or an exit"},
    {"timeout", 5, "a level that is held for a time"},
};
inline constexpr Word polarityWords[] = {
    {"negative", -1, "pulse-width, runt"},
    {"falling", -1, "edge, timeout"},
    {"fall-time", -1, "transition"},
    {"outside", -1, "window"},
    {"positive", 1, "pulse-width, runt"},
    {"rising", 1, "edge, timeout"},
    {"rise-time", 1, "transition"},
    {"inside", 1, "window"},
    {"either", 0},
};

inline constexpr Option mode = word("mode", "auto", modeWords, "when a trigger is waited for");
inline constexpr Option rearm = logical("rearm", "true", "mode once: wait for a new trigger; read together with mode");
inline constexpr Option position = number("position", "50", "%", "place of the trigger point in the window");
inline constexpr Option type = word("type", "edge", typeWords, "what triggers");
inline constexpr Option minDuration =
    numberText("minDuration", "0", "s", "runt: least time of the pulse; read together with type");
inline constexpr Option minPulseWidth =
    numberText("minPulseWidth", "0", "s", "other types: least width or duration; read together with type");
inline constexpr Option maxDuration =
    numberText("maxDuration", "Inf", "s", "runt: greatest time of the pulse; read together with type");
inline constexpr Option maxPulseWidth =
    numberText("maxPulseWidth", "Inf", "s", "other types: greatest width or duration; read together with type");
inline constexpr Option polarity = word("polarity", "rising", polarityWords, "direction that triggers");
inline constexpr Option autoLevel = logical("autoLevel", "true", "level in the middle of the signal's range");
inline constexpr Option level = number("level", "0", "data", "level when it is not automatic");
inline constexpr Option hysteresis = number("hysteresis", "0", "data", "band that a crossing must clear");
inline constexpr Option highLevel = number("highLevel", "0", "data", "upper level of transition, runt and window");
inline constexpr Option lowLevel = number("lowLevel", "0", "data", "lower level of transition, runt and window");
inline constexpr Option timeout = number("timeout", "0", "s", "type timeout: time that the level is held");
inline constexpr Option delay = number("delay", "0", "s", "time from the event to the trigger point");
inline constexpr Option holdoff = number("holdoff", "0", "s", "least time between two triggers");
inline constexpr Option triggerEnabled = logical("triggerEnabled", "false", "switch the trigger on");
inline constexpr Option triggerChannel =
    wholeNumberOrInteger("triggerChannel", "0", "", "index of the channel that triggers, counted from 0");
inline constexpr Option triggerSignal =
    wholeNumberOrInteger("triggerSignal", "0", "", "index of the signal that triggers, counted from 0");

inline constexpr auto own =
    join(list(mode, rearm, position, type, minDuration, minPulseWidth, maxDuration, maxPulseWidth, polarity, autoLevel,
              level, hysteresis, highLevel, lowLevel, timeout, delay, holdoff, triggerEnabled),
         base::spans, list(triggerChannel, triggerSignal));
inline constexpr auto options = join(base::hostFacts, own);

}  // namespace dspwavedecks::catalogue::trigger

/// The bf_trigger_filter, which reads the span of its simulation at a tune too.
namespace dspwavedecks::catalogue::blockflowTrigger {

inline constexpr Option clientID = base::clientID.readAt(When::Both);
inline constexpr Option isBlockInFrameProcMode = blockflowRange::isBlockInFrameProcMode.readAt(When::Both);
inline constexpr Option startTime = blockflowRange::startTime.readAt(When::Both);
inline constexpr Option timeSpanIsOneFramePeriod = blockflowRange::timeSpanIsOneFramePeriod.readAt(When::Both);
inline constexpr Option autoTimeRange = blockflowRange::autoTimeRange.readAt(When::Both);

inline constexpr auto options =
    join(list(base::action, clientID, base::numSignals, base::numChannels, base::frameSize), trigger::own,
         list(isBlockInFrameProcMode, startTime, timeSpanIsOneFramePeriod, autoTimeRange));

}  // namespace dspwavedecks::catalogue::blockflowTrigger
