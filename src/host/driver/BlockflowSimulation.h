#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "DeckClient.h"
#include "wavedeck/Visibility.h"
#include "wavedeck/WaveDeckClientInfo.h"

namespace wavedeck::driver {

/// Where the values of a simulation come from.
class WAVEDECK_API SimulationInput {
public:
    SimulationInput() = default;
    SimulationInput(const SimulationInput&) = delete;
    SimulationInput& operator=(const SimulationInput&) = delete;
    virtual ~SimulationInput();

    /// The next simulation frame of a signal.
    /// frame  becomes [numChannels][frameSize]; of an input port that delivers nothing now, empty
    /// returns false behind the end: there is no further whole frame
    virtual bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) = 0;

    /// Back to the first frame.
    virtual void restart() = 0;
};

/// What became of a step.
enum class StepResult { Stepped, Held, Paused, Ended };

/// A small block-diagram simulation that plays an input to a Blockflow client. It runs in steps of one frame period;
/// the time of step k is start + k * period, and with a finite stop time the last step is the last one not behind it.
/// What it has stepped waits until deliver() hands it to the client, so that a display can be slower than the
/// simulation: the client's pacer then holds it.
///
/// The frame period is that of signal 0: its frame size times its sample time. A frame size of 1 is a sample-based
/// simulation.
class WAVEDECK_API BlockflowSimulation {
public:
    /// keptSteps: steps that stay known for stepping back. Throws DriverError if the client is of another kind.
    BlockflowSimulation(DeckClient& client, SimulationInput& input, std::size_t keptSteps = 1000);

    /// Simulates one step, unless the simulation is paused, over or held by the pacer. It is not held while the client
    /// has nothing left to show: then it goes on.
    StepResult step();

    /// Hands the steps that wait, at most so many, to the client as one frame in head form. Returns how many.
    std::size_t deliver(std::size_t most = SIZE_MAX);

    /// One step back. If the client has seen the step that is taken back, its stages are told to roll back to the time
    /// of the last sample before it, and the frame of the step now reached is handed over once more: the records count
    /// down by it. Returns false at the first step or where steps are no longer known.
    bool stepBack();

    void pause();
    void resume();

    /// Begins again at the start time: stages are reset and set up once more. With a fast restart, for which nothing of
    /// the simulation is built anew, the client reports that one is or was active.
    void restart(bool fast);

    /// Other frame sizes, one a signal, from the next frame on that is read; the step that is read ahead keeps its
    /// size. The frame period stays, so the sample times change.
    void setFrameSizes(const std::vector<int>& frameSizes) { frameSizes_ = frameSizes; }

    /// Time of the newest step; the start time before the first.
    double time() const;
    SimStatus status() const { return status_; }
    std::size_t waiting() const { return static_cast<std::size_t>(stepped_ - delivered_); }
    std::uint64_t stepsTaken() const { return stepped_; }

private:
    /// One simulation frame of all signals.
    struct Step {
        std::vector<std::vector<double>> frames;
        std::vector<int> frameSizes;
    };

    double timeOf(std::uint64_t step) const;
    double lastSampleTime(std::uint64_t step) const;
    bool readAhead();
    bool isLast(std::uint64_t step);
    void forgetOldSteps();
    const Step& stepAt(std::uint64_t step) const;
    static bool haveSameSizes(const Step& one, const Step& other);
    void hand(std::uint64_t first, std::size_t count);
    void fillHead(std::size_t signal, std::uint64_t first, std::size_t count);
    void publish(SimStatus status);

    // options
    DeckClient& client_;
    SimulationInput& input_;
    std::size_t keptSteps_;
    std::vector<int> frameSizes_;  ///< of the frames that are read from now on

    // derived
    int samplesPerStep_ = 0;
    double sampleTime_ = 0.0;  ///< s, both of signal 0 at first: a step is as long for ever
    double startTime_ = 0.0;
    double stopTime_ = 0.0;

    // state
    std::vector<int> clientSizes_;  ///< frame sizes that the client was last told
    std::deque<Step> steps_;        ///< from firstKept_ on, also those ahead that were stepped back over or read ahead
    std::uint64_t firstKept_ = 0;
    std::uint64_t stepped_ = 0;    ///< steps taken
    std::uint64_t delivered_ = 0;  ///< steps that the client has
    SimStatus status_ = SimStatus::Running;

    // scratch
    std::vector<std::vector<double>> heads_;
};

}  // namespace wavedeck::driver
