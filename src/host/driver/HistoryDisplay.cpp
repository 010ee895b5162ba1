#include "HistoryDisplay.h"

#include <algorithm>
#include <cmath>

namespace wavedeck::driver {

std::size_t displayCapacity(double span, const SignalFacts& signal) {
    constexpr std::size_t shortest = 15361;  // points of a time message at most
    constexpr double longest = 1U << 24U;    // an absurd span shall not ask for absurd memory
    const double points = signal.sampleTime > 0.0 ? std::ceil(2.0 * span / signal.sampleTime) : 0.0;
    const double bounded = points > 0.0 ? std::min(points, longest) : 0.0;
    return std::max(shortest, static_cast<std::size_t>(bounded) + static_cast<std::size_t>(signal.frameSize));
}

HistoryDisplay::HistoryDisplay(const std::vector<std::size_t>& capacities)
    : Display(capacities.size()),
      capacities_(capacities),
      histories_(capacities.size()),
      replayed_(capacities.size()),
      isMagPhase_(capacities.size(), false) {}

void HistoryDisplay::reserve(std::size_t signal, std::size_t capacity) {
    capacities_[signal] = std::max(capacities_[signal], capacity);
    histories_[signal].grow(capacities_[signal]);
}

void HistoryDisplay::take(std::size_t signal, const DisplayInput& input) {
    if (input.isReplayed) {
        showsReplay_ = true;
        replayed_[signal].swap(input.buffer);
        return;
    }
    SampleHistory& history = histories_[signal];
    if (history.rows() != input.channels + 1) {
        setForm(signal, input.channels, isMagPhase_[signal]);  // there was no memory when the form changed
    }
    const std::size_t n = input.buffer.size() / (input.channels + 1);
    if (n == 0) {
        return;
    }
    if (n > history.capacity()) {
        reserve(signal, n);
    }
    history.appendTimed(input.buffer.data(), n);
}

void HistoryDisplay::setForm(std::size_t signal, std::size_t channels, bool isMagPhase) {
    // Magnitude and phase of a complex signal have as many channels as its real and imaginary parts.
    if (histories_[signal].rows() != channels + 1 || isMagPhase_[signal] != isMagPhase) {
        histories_[signal].configure(channels + 1, capacities_[signal]);
        replayed_[signal].clear();
        isMagPhase_[signal] = isMagPhase;
    }
}

void HistoryDisplay::dropAll() {
    for (SampleHistory& history : histories_) {
        history.clear();
    }
    endReplay();
}

void HistoryDisplay::dropNewerThan(double time) {
    for (SampleHistory& history : histories_) {
        history.dropNewerThan(time);
    }
}

void HistoryDisplay::endReplay() {
    showsReplay_ = false;
    for (std::vector<double>& buffer : replayed_) {
        buffer.clear();  // the next replay need not bring every signal
    }
}

void HistoryDisplay::layOut() {
    for (std::size_t s = 0; s < histories_.size(); ++s) {
        const std::size_t blocks = histories_[s].rows();
        if (showsReplay_) {
            data_[s] = replayed_[s];
        } else {
            histories_[s].layOut(data_[s]);
        }
        numChannels_[s] = static_cast<int>(blocks) - 1;
        numPoints_[s] = blocks == 0 ? 0 : static_cast<int>(data_[s].size() / blocks);
    }
}

}  // namespace wavedeck::driver
