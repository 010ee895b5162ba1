// The window of a trigger event as the stretch of a time message.
#include <algorithm>
#include <cstddef>

#include "TimeDataStrategy.h"
#include "TriggerFilter.h"

namespace dspwavedecks {

bool TimeDataStrategy::isTriggerActive() const {
    return isStageActive("trigger_filter") || isStageActive("bf_trigger_filter");
}

void TimeDataStrategy::resetTriggerStateInfo() {
    triggerFound = false;
    triggerEventIdx = 0;
    triggerSignal = 0;
}

void TimeDataStrategy::computeTriggerDataStartAndEndIdx(const Buffers& data, int signal, int numPointsPerChannel,
                                                        Settings&) {
    const TriggerFilter::Queue* const queue = TriggerFilter::getTriggerEventDataQueue(clientID);
    if (queue == nullptr || queue->empty()) {
        return;
    }
    triggerSignal = queue->back().signal;
    if (triggerSignal != static_cast<unsigned long>(signal)) {
        return;  // that signal's turn packages the information
    }
    triggerFound = false;
    triggerEventIdx = queue->size() - 1;
    const double* const times = data[static_cast<std::size_t>(signal)].data();
    const double* const timesEnd = times + numPointsPerChannel;
    for (std::size_t event = queue->size(); event-- > 0;) {
        const triggerStruct& window = (*queue)[event];
        const double* first = std::upper_bound(times, timesEnd, window.startTime);
        if (first != times) {
            --first;  // the sample at the start of the window, or the one before
        }
        const double* const last = std::lower_bound(first, timesEnd, window.endTime);
        if (last != timesEnd && *last > *first && window.endTime > window.startTime) {
            dataStartIdx = static_cast<int>(first - times);
            dataEndIdx = static_cast<int>(last - times);
            triggerFound = true;
            triggerEventIdx = event;
            triggerSignal = window.signal;
            return;
        }
    }
    // No event fits: the indices stay as they were reset, and the signal is shown as without a trigger.
}

void TimeDataStrategy::addTriggerInformation(const Buffers&, int signal, int, Settings&, ObjectPointer& measurements) {
    measurements->set("trigger", TriggerFilter::packageImpl(clientID, static_cast<unsigned long>(signal), triggerFound,
                                                            triggerEventIdx, false));
}

}  // namespace dspwavedecks
