#include "ProgressLine.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "EngineeringNumber.h"

namespace program {

ProgressLine::ProgressLine() : terminal_(isatty(STDERR_FILENO) != 0) {}

void ProgressLine::show(double streamTime, std::optional<double> duration) {
    if (!terminal_ || Clock::now() < next_) {
        return;
    }
    constexpr auto period = std::chrono::milliseconds(200);
    next_ = Clock::now() + period;
    std::string text = formatQuantity(streamTime, "s", 4);
    if (duration && *duration > 0.0) {
        text +=
            " of " + formatQuantity(*duration, "s", 4) + ", " + formatQuantity(100.0 * streamTime / *duration, "%", 3);
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - begin_).count();
    text += ", " + formatQuantity(streamTime / elapsed, "", 3) + " times real time";
    std::fprintf(stderr, "\r\033[K%s", text.c_str());
    shown_ = true;
}

void ProgressLine::clear() {
    if (shown_) {
        std::fputs("\r\033[K", stderr);
        shown_ = false;
    }
}

}  // namespace program
