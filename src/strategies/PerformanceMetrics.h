#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <chrono>

namespace dspwavedecks {

/// Rate of a strategy's updates, for the "performance" member of its messages: measured anew every five updates. The
/// first figures are that of the start values, 5 updates in 5 s, whatever the true rate.
class PerformanceMetrics {
public:
    /// Counts one update and sets "performance" in the message, if the host's diagnostics are on.
    void log(Poco::SharedPtr<Poco::JSON::Object>& message);

private:
    using Clock = std::chrono::steady_clock;

    void beginWindow();

    // Options.
    unsigned long framesPerWindow = 5;

    // State.
    bool enabled = false;  ///< measuring has begun
    double elapsed = 5.0;  ///< seconds that the last whole window took
    unsigned long frameCount = 0;
    Clock::time_point startTime = Clock::now();
    Clock::time_point stopTime = startTime;
};

}  // namespace dspwavedecks
