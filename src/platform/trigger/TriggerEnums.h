#pragma once

#include <cstdint>

/// The vocabulary of the trigger.
namespace deckutil::TDTC {

/// What happens when nothing triggers, and after an event.
enum ModeEnum : std::int32_t {
    Auto = 0,    ///< runs free when nothing triggers within a window
    Normal = 1,  ///< waits for the next trigger
    Once = 2,    ///< a single event, then nothing until it is armed again
    Off = 3,     ///< samples are ignored
};

/// The condition that is looked for.
enum TypeEnum : std::int32_t {
    Edge = 0,
    PulseWidth = 1,
    Transition = 2,
    Runt = 3,
    Window = 4,
    Timeout = 5,
};

/// One enumeration for all types, each type with its own words for the three values.
enum PolarityEnum : std::int32_t {
    Negative = -1,  ///< falling edge, fall time, negative pulse or runt, leaving the window, below the level
    Either = 0,
    Positive = 1,  ///< rising edge, rise time, positive pulse or runt, entering the window, above the level
};

}  // namespace deckutil::TDTC
