#include "StopRequest.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

namespace program {
namespace {

// When the first signal came, in nanoseconds of the steady clock; 0: none has.
std::atomic<std::int64_t> stopTime{0};
static_assert(std::atomic<std::int64_t>::is_always_lock_free, "signal handlers use it");

// The handler writes a byte here, so that a wait that is just about to begin ends too.
std::array<int, 2> wakePipe{-1, -1};

void onSignal(int number) {
    const int savedErrno = errno;
    timespec clock{};
    clock_gettime(CLOCK_MONOTONIC, &clock);
    const auto now = std::int64_t{clock.tv_sec} * 1'000'000'000 + clock.tv_nsec;
    // One wish may come twice, to the process and to its group.
    constexpr std::int64_t sameWish = 500'000'000;
    std::int64_t first = 0;
    if (!stopTime.compare_exchange_strong(first, now) && now - first > sameWish) {
        std::signal(number, SIG_DFL);
        raise(number);
    }
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
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

bool StopRequest::requested() {
    return stopTime != 0;
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
