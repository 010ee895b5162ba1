#include "PlanMeasurement.h"

#include <fcntl.h>
#include <fftw3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include "FftPlan.h"

namespace fftbridge {

namespace {

constexpr double plannerSeconds = 20;  // FFTW then settles for the best it has seen
constexpr unsigned childSeconds = 60;
constexpr int childNiceness = 10;

void setSignalsToDefault() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal) {
        sigaction(signal, &action, nullptr);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Leaves `file` alone open and returns its new number.
int closeAllBut(int file) {
    constexpr int kept = 0;
    if (file != kept) {
        dup2(file, kept);
    }
    close_range(kept + 1, UINT_MAX, 0);
    return kept;
}

bool writeAll(int file, const char* text, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(file, text, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

[[noreturn]] void measureInChild(const FftPlanKey& key, int pipe) noexcept {
    setSignalsToDefault();
    alarm(childSeconds);
    pipe = closeAllBut(pipe);
    setpriority(PRIO_PROCESS, 0, childNiceness);
    fftw_set_timelimit(plannerSeconds);
    FftPlan::measure(key);
    const char* wisdom = fftw_export_wisdom_to_string();
    _exit(wisdom != nullptr && writeAll(pipe, wisdom, std::strlen(wisdom)) ? 0 : 1);
}

}  // namespace

PlanMeasurement::PlanMeasurement(const FftPlanKey& key) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    child_ = fork();
    if (child_ == 0) {
        measureInChild(key, ends[1]);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(ends[1]);
    pipe_ = ends[0];
    fcntl(pipe_, F_SETFL, O_NONBLOCK);
    state_ = child_ > 0 ? State::running : State::failed;
}

PlanMeasurement::~PlanMeasurement() {
    if (state_ == State::running) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    if (pipe_ >= 0) {
        close(pipe_);
    }
}

PlanMeasurement::State PlanMeasurement::poll() {
    if (state_ != State::running) {
        return state_;
    }
    // The pipe is emptied while the child runs, since it can't end before all is written, and again when it has ended.
    readWhatIsThere();
    int status = 0;
    const pid_t ended = waitpid(child_, &status, WNOHANG);
    if (ended == 0) {
        return state_;
    }
    readWhatIsThere();
    // A program may ignore its children or collect them all itself: then there is no status, and the text decides.
    const bool succeeded = ended < 0 || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
    state_ = succeeded && !wisdom_.empty() ? State::finished : State::failed;
    return state_;
}

void PlanMeasurement::readWhatIsThere() {
    std::array<char, 4096> block;
    ssize_t size = 0;
    while ((size = read(pipe_, block.data(), block.size())) > 0) {
        wisdom_.append(block.data(), static_cast<std::size_t>(size));
    }
}

}  // namespace fftbridge
