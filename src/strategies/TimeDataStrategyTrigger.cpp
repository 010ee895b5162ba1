// The window of a trigger event as the stretch of a time message.
#include "TimeDataStrategy.h"

namespace dspwavedecks {

bool TimeDataStrategy::isTriggerActive() const {
    return isStageActive("trigger_filter") || isStageActive("bf_trigger_filter");
}

void TimeDataStrategy::resetTriggerStateInfo() {
    triggerFound = false;
    triggerEventIdx = 0;
    triggerSignal = 0;
}

void TimeDataStrategy::computeTriggerDataStartAndEndIdx(const Buffers&, int, int, Settings&) {
    // Without events the indices stay as they were reset: the signal is shown as without a trigger.
}

void TimeDataStrategy::addTriggerInformation(const Buffers&, int, int, Settings&, ObjectPointer&) {}

}  // namespace dspwavedecks
