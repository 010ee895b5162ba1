#include "BlockflowSimulation.h"

#include "DriverRig.h"

namespace {

/// Signal s counts 100 s, 100 s + 1, ... over `steps` frames; the second channel is the first negated. Ports deliver a
/// value in even frames only.
class CountingInput : public SimulationInput {
public:
    CountingInput(std::vector<SignalFacts> signals, int steps) : signals_(std::move(signals)), steps_(steps) {
        restart();
    }

    bool read(std::size_t signal, std::size_t frameSize, Values& frame) override {
        if (read_[signal]++ >= steps_) {
            return false;
        }
        frame.clear();
        if (signals_[signal].isInputPort && read_[signal] % 2 == 0) {
            return true;
        }
        for (int channel = 0; channel < signals_[signal].numChannels; ++channel) {
            const double sign = channel == 0 ? 1.0 : -1.0;
            append(frame, ramp(sign * next_[signal], frameSize, sign));
        }
        next_[signal] += static_cast<double>(frameSize);
        return true;
    }
    void restart() override {
        read_.assign(signals_.size(), 0);
        next_ = ramp(0.0, signals_.size(), 100.0);
    }

private:
    std::vector<SignalFacts> signals_;
    int steps_;
    std::vector<int> read_;
    Values next_;
};

/// A Blockflow time client with a record, a pacer and a tap, and its simulation.
struct SimulationRig : DriverRig {
    explicit SimulationRig(const ClientFacts& facts, int steps = 1000)
        : DriverRig(facts), input(facts.signals, steps), simulation(client, input) {
        record = add("bf_simulation_meta_data_filter");
        tap = add("tap");
        client.setup();
    }

    /// Steps that are delivered one by one.
    void run(int steps) {
        for (int i = 0; i < steps; ++i) {
            simulation.step();
            simulation.deliver();
        }
    }

    CountingInput input;
    BlockflowSimulation simulation;
    std::shared_ptr<RecordingStage> record;
    std::shared_ptr<RecordingStage> tap;
};

TEST(BlockflowSimulation, HandsHeadsAndExpandsThemToOneTimeASample) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(2, 0.25, 2)}));
    for (int i = 0; i < 3; ++i) {
        rig.simulation.step();
    }
    EXPECT_EQ(rig.simulation.deliver(2), 2U);
    EXPECT_EQ(rig.record->seen[0], (Values{0, 0.5, 0, 1, 2, 3, -0.0, -1, -2, -3}));
    EXPECT_EQ(rig.tap->seen[0], (Values{0, 0.25, 0.5, 0.75, 0, 1, 2, 3, -0.0, -1, -2, -3}));
    EXPECT_EQ(DriverRig::info().getSimulationTime(), 1.0) << "the simulation is ahead of what was delivered";
    EXPECT_EQ(rig.simulation.deliver(), 1U);
    rig.client.update();
    EXPECT_EQ(rig.strategy->numPoints[0], 6);
    EXPECT_EQ(rig.client.streamTime(), 1.5);
}

TEST(BlockflowSimulation, AStepBackRollsTheStagesBackAndHandsTheFrameReachedOnceMore) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(1, 0.25, 2)}));
    rig.run(4);
    rig.log->clear();
    EXPECT_TRUE(rig.simulation.stepBack());
    EXPECT_EQ(rig.log->front(), "bf_simulation_meta_data_filter rollback onRollback");
    EXPECT_EQ(optionValues<double>(rig.tap->last, "rollbacktime"), Values{1.25});
    EXPECT_EQ(DriverRig::info().getSimulationTime(), 1.0);
    EXPECT_EQ(rig.record->seen[0], (Values{1.0, 4, 5}));
    EXPECT_EQ(rig.shown(), (Values{0, 0.25, 0.5, 0.75, 1, 1.25, 0, 1, 2, 3, 4, 5}));
    // Forward again over the step that is known, and over a new one.
    for (const double first : {6.0, 8.0}) {
        rig.run(1);
        EXPECT_EQ(rig.record->seen[0][1], first);
    }
    // What was not delivered yet is taken back without the stages.
    rig.simulation.step();
    rig.log->clear();
    EXPECT_TRUE(rig.simulation.stepBack());
    EXPECT_TRUE(rig.log->empty());
    EXPECT_EQ(rig.simulation.waiting(), 0U);
    while (rig.simulation.stepBack()) {
    }
    EXPECT_EQ(rig.simulation.time(), 0.0);
    EXPECT_EQ(rig.record->seen[0], (Values{0, 0, 1}));
}

TEST(BlockflowSimulation, EndsAtTheStopTimeOrWithItsInput) {
    struct Case {
        double stopTime;
        int steps;
        std::uint64_t expected;
    };
    for (const Case& c : {Case{1.0, 1000, 11}, Case{0.99, 1000, 10}, Case{infinity, 7, 7}, Case{infinity, 0, 0}}) {
        ClientFacts facts = factsOf(ChainKind::BlockflowTime, {realSignal(1, 0.1, 1)});
        facts.stopTime = c.stopTime;
        SimulationRig rig(facts, c.steps);
        while (rig.simulation.step() == StepResult::Stepped) {
            const bool isLast = rig.simulation.stepsTaken() == c.expected;
            EXPECT_EQ(rig.simulation.status() == wavedeck::SimStatus::Ended, isLast);
        }
        EXPECT_EQ(rig.simulation.stepsTaken(), c.expected);
        EXPECT_EQ(rig.simulation.status(), wavedeck::SimStatus::Ended);
        if (c.expected > 1) {
            EXPECT_EQ(DriverRig::info().getSimStatus(), 1) << "for the client it runs until the last step is delivered";
            rig.simulation.deliver(c.expected - 1);
            EXPECT_EQ(DriverRig::info().getSimStatus(), 1);
            rig.simulation.deliver();
            EXPECT_EQ(rig.simulation.time(), DriverRig::info().getSimulationTime());
        }
        EXPECT_EQ(DriverRig::info().getSimStatus(), 0);
    }
}

TEST(BlockflowSimulation, PausesAndIsHeldWhileTheDisplayHasSomethingLeftToShow) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(1, 1.0, 1)}));
    rig.simulation.step();
    rig.simulation.pause();
    EXPECT_EQ(rig.simulation.step(), StepResult::Paused);
    EXPECT_EQ(DriverRig::info().getSimStatus(), 2);
    rig.simulation.resume();
    DriverRig::info().setContinueProcessing(false);
    EXPECT_EQ(rig.simulation.step(), StepResult::Held);
    rig.simulation.deliver();
    EXPECT_EQ(rig.simulation.step(), StepResult::Stepped) << "a held simulation with nothing to show would stand still";
    EXPECT_EQ(rig.simulation.step(), StepResult::Held);
}

TEST(BlockflowSimulation, AFastRestartResetsTheStagesAndSetsThemUpOnceMore) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(1, 0.5, 2)}));
    rig.run(3);
    rig.log->clear();
    rig.simulation.restart(true);
    EXPECT_EQ(*rig.log, (CallLog{"bf_simulation_meta_data_filter reset", "tap reset",
                                 "bf_simulation_meta_data_filter setup", "tap setup"}));
    EXPECT_TRUE(DriverRig::info().isOrWasFastRestartActive());
    rig.run(1);
    EXPECT_EQ(rig.record->seen[0], (Values{0, 0, 1}));
    EXPECT_EQ(rig.shown(), (Values{0, 0.5, 0, 1}));
}

TEST(BlockflowSimulation, OtherFrameSizesKeepTheFramePeriod) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(1, 0.25, 2)}));
    rig.simulation.step();  // the next step is read ahead with the old size
    rig.simulation.setFrameSizes({4});
    rig.simulation.step();
    rig.simulation.step();
    rig.simulation.deliver();
    EXPECT_EQ(rig.tap->seen[0], (Values{1, 1.125, 1.25, 1.375, 4, 5, 6, 7}));
    EXPECT_EQ(optionText(rig.tap->last, "action"), "onInputSizeChange");
    EXPECT_EQ(rig.shown(), (Values{0, 0.25, 0.5, 0.75, 1, 1.125, 1.25, 1.375, 0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_TRUE(rig.simulation.stepBack()) << "back over the change";
    EXPECT_EQ(rig.record->seen[0], (Values{0.5, 2, 3}));
}

TEST(BlockflowSimulation, ASpectrumChainHasPortsBehindItsDataAndJoinsSlots) {
    SignalFacts port = realSignal(1, 0.5, 1);
    port.isInputPort = true;
    ClientFacts facts = factsOf(ChainKind::BlockflowSpectrum, {realSignal(1, 0.25, 2), port});
    DriverRig rig(facts);
    const auto ports = rig.add("bf_input_port_parameters_handler_filter");
    const auto estimator = rig.add("bf_spectrum_estimator_filter", [](const auto& data, auto& out, int signal) {
        if (signal == 0) {
            out = {10, 20, data[1], data[2]};  // two frequencies, two values
        }
    });
    const auto tap = rig.add("channel_measurements_filter");
    rig.add("bf_spectrum_data_aggregator_filter", [](const auto& data, auto& out, int) {
        out = {1, data[2], data[3]};  // one slot of a simulation frame
    });
    rig.client.setup();
    EXPECT_EQ(optionValues<double>(ports->last, "numSignals"), Values{2.0});
    EXPECT_EQ(optionValues<double>(tap->last, "numSignals"), Values{1.0});
    EXPECT_EQ(optionValues<int>(tap->last, "frameSize"), std::vector<int>{2});
    EXPECT_EQ(optionValues<double>(estimator->last, "sampleTime"), (Values{0.5, 0.5}));
    EXPECT_TRUE(DriverRig::info().usingStreamPlugInBF());
    DriverRig::info().getClientSettings().addCustomSetting("spectrumLength", 2UL);
    CountingInput input(facts.signals, 100);
    BlockflowSimulation simulation(rig.client, input);
    const auto run = [&] {
        for (int i = 0; i < 2; ++i) {
            simulation.step();
            simulation.deliver();
        }
        rig.client.update();
    };
    run();
    EXPECT_EQ(ports->seen, (Buffers{{0.5, 2, 3}, {}})) << "a port may deliver nothing in a frame";
    EXPECT_EQ(tap->seen, (Buffers{{10, 20, 2, 3}}));
    EXPECT_EQ(rig.strategy->data, (Buffers{{1, 2, 3}, {}})) << "without a spectrogram the latest alone";
    EXPECT_EQ(rig.strategy->numPoints[0], 2);
    rig.client.tune("channel_measurements_filter", optionList("showSpectrogram=true"));
    run();
    EXPECT_EQ(rig.strategy->data[0], (Values{1, 1, 4, 5, 6, 7})) << "headers, then slots";
    EXPECT_EQ(rig.strategy->numSignals, 2);
}

TEST(BlockflowSimulation, AReplayHasTheHeadOfTheStoredFrames) {
    SimulationRig rig(factsOf(ChainKind::BlockflowTime, {realSignal(1, 0.25, 2)}));
    rig.run(3);
    rig.client.replay();
    EXPECT_EQ(rig.record->seen[0], (Values{0, 0.5, 1, 0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(rig.tap->seen[0], (Values{0, 0.25, 0.5, 0.75, 1, 1.25, 0, 1, 2, 3, 4, 5}));
}

}  // namespace
