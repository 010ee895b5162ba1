#include "DeckSimulation.h"

namespace program {

using wavedeck::driver::StepResult;

void DeckSimulation::push(const std::vector<std::vector<double>>& frame) {
    waiting_.resize(frame.size());
    for (std::size_t signal = 0; signal < frame.size(); ++signal) {
        waiting_[signal].push_back(frame[signal]);
    }
    if (++pushed_ > 1) {
        advance();
    }
}

void DeckSimulation::end() {
    while (simulation_.step() == StepResult::Stepped) {
        simulation_.deliver();
    }
    simulation_.deliver();
}

void DeckSimulation::advance() {
    // Held by the pacer it goes on once the client has what waits.
    if (simulation_.step() == StepResult::Held) {
        simulation_.deliver();
        simulation_.step();
    }
    simulation_.deliver();
}

bool DeckSimulation::read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) {
    if (signal >= waiting_.size() || waiting_[signal].empty()) {
        return false;
    }
    frame = std::move(waiting_[signal].front());
    waiting_[signal].pop_front();
    return frame.size() % frameSize == 0 && !frame.empty();
}

}  // namespace program
