#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "BlockflowSimulation.h"
#include "DeckClient.h"

namespace program {

/// Plays the frames of a session to a Blockflow client as the steps of a simulation. The simulation looks one step
/// ahead, so that it knows its last one; what it has stepped waits until the client is shown it.
class DeckSimulation final : private wavedeck::driver::SimulationInput {
public:
    /// A session goes forward only: the simulation keeps no steps to go back to.
    explicit DeckSimulation(wavedeck::driver::DeckClient& client) : simulation_(client, *this, 1) {}

    /// Adds a frame of all signals and simulates what has become known, unless the pacer holds the simulation.
    void push(const std::vector<std::vector<double>>& frame);

    /// No frame follows: simulates the rest.
    void end();

    /// Steps that the client was shown.
    std::uint64_t stepsShown() const { return simulation_.stepsTaken() - simulation_.waiting(); }

    /// Whether a step waits that the client was not shown.
    bool hasWaiting() const { return simulation_.waiting() > 0; }

    /// Shows the client the oldest step that waits. A simulation that was held may then go on.
    void show();

    /// Whether the pacer holds the simulation: no frame should come until it goes on.
    bool isHeld() const { return isHeld_; }

    /// How often the pacer held the simulation.
    std::uint64_t timesHeld() const { return timesHeld_; }

private:
    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override;
    void restart() override {}
    void advance();

    // State.
    std::vector<std::deque<std::vector<double>>> unread_;  ///< [signals] frames that the simulation has not read
    std::size_t known_ = 0;                                ///< frames that came
    bool hasEnded_ = false;
    bool isHeld_ = false;
    std::uint64_t timesHeld_ = 0;
    wavedeck::driver::BlockflowSimulation simulation_;
};

}  // namespace program
