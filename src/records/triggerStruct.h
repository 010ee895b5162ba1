#pragma once

#include <cstdint>

namespace dspwavedecks {

/// One trigger event: the window that it selects and the engine's settings when it was taken.
struct triggerStruct {
    double startTime = 0.0;       ///< s, start of the window
    double endTime = 0.0;         ///< s, end of the window
    double position = 0.0;        ///< s, time of the trigger point in the window
    double level = 0.0;           ///< signal's unit
    double highLevel = 0.0;       ///< signal's unit
    double lowLevel = 0.0;        ///< signal's unit
    bool enableOnceMode = false;  ///< whether the engine was still armed for a single event
    std::uint64_t signal = 0;     ///< signal that was watched
    std::int32_t mode = 0;        ///< 0 auto, 1 normal, 2 once, 3 off
};

}  // namespace dspwavedecks
