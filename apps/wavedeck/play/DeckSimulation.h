#pragma once

#include <deque>
#include <vector>

#include "BlockflowSimulation.h"
#include "DeckClient.h"

namespace program {

/// Plays the frames of a session to a Blockflow client as the steps of a simulation. The simulation looks one step
/// ahead, so that it knows its last one.
class DeckSimulation final : private wavedeck::driver::SimulationInput {
public:
    explicit DeckSimulation(wavedeck::driver::DeckClient& client) : simulation_(client, *this) {}

    /// Adds a frame of all signals; what is no whole frame is left out. Hands the client what has become known.
    void push(const std::vector<std::vector<double>>& frame);

    /// No frame follows: hands the client the rest.
    void end();

private:
    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override;
    /// A session goes forward only.
    void restart() override {}
    void advance();

    std::vector<std::deque<std::vector<double>>> waiting_;  ///< [signals] frames that the simulation has not read
    std::size_t pushed_ = 0;
    wavedeck::driver::BlockflowSimulation simulation_;
};

}  // namespace program
