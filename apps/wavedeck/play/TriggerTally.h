#pragma once

#include <Poco/JSON/Object.h>

#include <cstdint>
#include <string>

#include "Report.h"

namespace program {

/// Keeps account of the trigger over the messages of a deck: an event leaves the board once a message has taken it.
class TriggerTally {
public:
    /// Looks at the trigger of a message, if it has one.
    void add(const Poco::JSON::Object& message);

    /// Adds what was found to the trigger's section.
    void report(ReportSection& section) const;

private:
    std::uint64_t updates_ = 0;
    std::uint64_t triggered_ = 0;
    double position_ = 0.0;  ///< s, of the last event
    double level_ = 0.0;
};

}  // namespace program
