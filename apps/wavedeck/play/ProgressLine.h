#pragma once

#include <chrono>
#include <optional>

namespace program {

/// One line of progress on standard error, rewritten in place; nothing when that is no terminal.
class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// streamTime  seconds of signal that went through
    /// duration    seconds of the whole signal, when known
    void show(double streamTime, std::optional<double> duration);

    /// Takes the line away.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    bool terminal_;
    bool shown_ = false;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point next_ = begin_;
};

}  // namespace program
