#pragma once

#include <chrono>

namespace program {

/// The wish to end early: SIGINT or SIGTERM. The first one asks the program to end cleanly with what was measured so
/// far; another one, more than half a second later, ends it at once. SIGPIPE is ignored: a broken pipe shows as a
/// failed write.
class StopRequest {
public:
    /// Takes over the signals; call once, before the first input is opened.
    static void install();

    /// Whether a signal has come.
    static bool requested();

    /// Waits until the descriptor can be read or a signal comes. Returns false for a signal.
    static bool waitReadable(int descriptor);

    /// Sleeps until the given time or until a signal comes. Returns false for a signal.
    static bool sleepUntil(std::chrono::steady_clock::time_point wakeUp);
};

}  // namespace program
