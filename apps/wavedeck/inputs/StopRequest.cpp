#include "StopRequest.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace program {
namespace {

volatile std::sig_atomic_t stopRequested = 0;

// The handler writes a byte here, so that a wait that is just about to begin ends too.
std::array<int, 2> wakePipe{-1, -1};

void onSignal(int) {
    const int savedErrno = errno;
    stopRequested = 1;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(wakePipe[1], &byte, 1);
    errno = savedErrno;
}

}  // namespace

void StopRequest::install() {
    if (pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    action.sa_flags = 0;
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

bool StopRequest::requested() {
    return stopRequested != 0;
}

bool StopRequest::waitReadable(int descriptor) {
    std::array<pollfd, 2> waited{{{descriptor, POLLIN, 0}, {wakePipe[0], POLLIN, 0}}};
    while (!requested()) {
        if (poll(waited.data(), waited.size(), -1) > 0 && waited[0].revents != 0) {
            return !requested();
        }
    }
    return false;
}

bool StopRequest::sleepUntil(std::chrono::steady_clock::time_point wakeUp) {
    pollfd waited{wakePipe[0], POLLIN, 0};
    while (!requested()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(wakeUp - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return true;
        }
        poll(&waited, 1, static_cast<int>(std::min<long long>(left.count(), 60000)));
    }
    return false;
}

}  // namespace program
