#include "TriggerTally.h"

#include "EngineeringNumber.h"

namespace program {

void TriggerTally::add(const Poco::JSON::Object& message) {
    const auto measurements = message.getObject("measurements");
    const auto trigger = measurements.isNull() ? measurements : measurements->getObject("trigger");
    if (trigger.isNull()) {
        return;
    }
    ++updates_;
    if (!trigger->getValue<bool>("triggerFound")) {
        return;
    }
    ++triggered_;
    position_ = parseNumber(trigger->getValue<std::string>("position")).value_or(0.0);
    level_ = parseNumber(trigger->getValue<std::string>("level")).value_or(0.0);
}

void TriggerTally::report(ReportSection& section) const {
    section.add({"updates", "updates", updates_}).add({"triggered", "triggered updates", triggered_});
    if (triggered_ > 0) {
        section.add({"position", "last trigger at", position_, "s"}).add({"level", "level", level_});
    }
}

}  // namespace program
