#include "DeckSimulation.h"

#include <utility>

namespace program {

using wavedeck::driver::StepResult;

void DeckSimulation::push(const std::vector<std::vector<double>>& frame) {
    unread_.resize(frame.size());
    for (std::size_t signal = 0; signal < frame.size(); ++signal) {
        unread_[signal].push_back(frame[signal]);
    }
    ++known_;
    advance();
}

void DeckSimulation::end() {
    hasEnded_ = true;
    advance();
}

void DeckSimulation::show() {
    simulation_.deliver(1);
    advance();
}

void DeckSimulation::advance() {
    // A step whose successor is not known yet could be the last.
    while (simulation_.stepsTaken() + (hasEnded_ ? 0 : 1) < known_) {
        const StepResult result = simulation_.step();
        timesHeld_ += result == StepResult::Held && !isHeld_ ? 1 : 0;
        isHeld_ = result == StepResult::Held;
        if (result != StepResult::Stepped) {
            return;
        }
    }
}

bool DeckSimulation::read(std::size_t signal, std::size_t /*frameSize*/, std::vector<double>& frame) {
    if (signal >= unread_.size() || unread_[signal].empty()) {
        return false;
    }
    frame = std::move(unread_[signal].front());
    unread_[signal].pop_front();
    return true;
}

}  // namespace program
