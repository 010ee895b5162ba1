#include "DeckClient.h"

#include <thread>

#include "DriverRig.h"

namespace {

TEST(DeckClient, SetupListsCarryTheRawCountsForEveryStage) {
    SignalFacts complexSignal = realSignal(2, 0.5, 8);
    complexSignal.isComplex = true;
    DriverRig rig(ChainKind::Time, {realSignal(3, 0.5, 4), complexSignal});
    const auto doubling = rig.add("magnitude_phase_filter", [](const auto& data, auto& out, int) { out = data; });
    const auto behind = rig.add("behind");
    doubling->onAction = [](const PropertyList&) { DriverRig::info().channelSizeFactors = {2.0, 1.0}; };
    rig.client.setup();
    for (const auto& stage : {doubling, behind}) {
        EXPECT_EQ(optionText(stage->last, "action"), "setup");
        EXPECT_EQ(optionText(stage->last, "clientID"), "driver test");
        EXPECT_EQ(optionValues<double>(stage->last, "numSignals"), Values{2.0});
        EXPECT_EQ(optionValues<int>(stage->last, "numChannels"), (std::vector<int>{3, 2}));
        EXPECT_EQ(optionValues<int>(stage->last, "frameSize"), (std::vector<int>{4, 8}));
    }
    // The display span is what the plain cache holds of signal 0.
    EXPECT_EQ(optionValues<double>(doubling->last, "timeRange"), (Values{2500.0, 2500.0}));
    EXPECT_EQ(optionValues<bool>(doubling->last, "magPhaseData"), (std::vector<bool>{false, false}));
    EXPECT_FALSE(behind->last.find("timeRange"));

    rig.client.tune("behind", PropertyList().addDouble("x", 1.0));
    EXPECT_EQ(optionText(behind->last, "action"), "tune");
    EXPECT_FALSE(behind->last.find("numChannels"));
    rig.client.resize({1, 4}, {16, 2});
    EXPECT_EQ(optionText(behind->last, "action"), "onInputSizeChange");
    EXPECT_EQ(optionValues<int>(behind->last, "numChannels"), (std::vector<int>{1, 4}));
    rig.client.rollback("behind", optionList("rollbacktime=1.0"));
    EXPECT_EQ(rig.log->back(), "behind rollback onRollback");
    rig.client.reset("behind");
    EXPECT_EQ(rig.log->back(), "behind reset");
    rig.client.setup("behind", PropertyList().addDouble("numChannels", 7.0));
    EXPECT_EQ(optionValues<double>(behind->last, "numChannels"), Values{7.0}) << "given, and not the driver's own";
    EXPECT_EQ(optionValues<int>(behind->last, "frameSize"), (std::vector<int>{16, 2}));
    rig.client.sendAsIs("behind", PropertyList().addDouble("only", 1.0));
    EXPECT_FALSE(behind->last.find("action"));
}

TEST(DeckClient, HandsEachStageItsForm) {
    DriverRig rig(ChainKind::Time, {realSignal(1, 0.5, 2), realSignal(2, 0.25, 2)});
    const auto record = rig.add("simulation_meta_data_filter");
    rig.add("idle")->active = false;
    const auto tap = rig.add("time_signal_statistics_filter");
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2}, {3, 4, 5, 6}});
    rig.log->clear();
    rig.client.frame(Buffers{{7, 8}, {9, 10, 11, 12}});
    EXPECT_EQ(*rig.log, (CallLog{"simulation_meta_data_filter pre", "idle pre", "time_signal_statistics_filter pre",
                                 "simulation_meta_data_filter filter 0", "simulation_meta_data_filter filter 1",
                                 "time_signal_statistics_filter filter 0", "time_signal_statistics_filter filter 1"}))
        << "stage by stage, and within a stage signal by signal";
    EXPECT_EQ(record->seen, (Buffers{{7, 8}, {9, 10, 11, 12}}));
    EXPECT_EQ(tap->seen, (Buffers{{1.0, 1.5, 7, 8}, {0.5, 0.75, 9, 10, 11, 12}}));
    // A last short frame is handed as short as it is; a signal that has ended gives no points.
    rig.client.frame(Buffers{{9}, {}});
    EXPECT_EQ(tap->seen, (Buffers{{2.0, 9}, {}}));
    rig.client.frameAsIs(Buffers{{5, 6}, {1, 2, 3}});
    EXPECT_EQ(record->seen, (Buffers{{5, 6}, {1, 2, 3}}));
    EXPECT_EQ(tap->seen, (Buffers{{5, 6}, {1, 2, 3}}));
}

TEST(DeckClient, AReplacingStageThatPutsNothingOutEndsTheSignalsRoadForThisFrame) {
    DriverRig rig(ChainKind::Spectrum, {realSignal(1, 1.0, 2), realSignal(1, 1.0, 2)});
    const auto estimator = rig.add("estimator", [](const auto& data, auto& out, int signal) {
        if (signal == 1 || data[0] < 0.0) {
            out = {0.0, 1.0, data[0], data[1]};
        }
    });
    const auto tap = rig.add("tap");
    rig.client.setup();
    rig.client.setKeepOutputs(true);
    rig.client.frame(Buffers{{-1, 2}, {3, 4}});
    EXPECT_EQ(tap->seen, (Buffers{{0, 1, -1, 2}, {0, 1, 3, 4}}));
    EXPECT_EQ(estimator->outputSizeBefore, 0U);
    rig.log->clear();
    rig.client.frame(Buffers{{5, 6}, {7, 8}});
    EXPECT_EQ(*rig.log,
              (CallLog{"estimator pre", "tap pre", "estimator filter 0", "estimator filter 1", "tap filter 1"}));
    EXPECT_EQ(rig.client.output("estimator", 0), Values{});
    EXPECT_EQ(rig.client.output("estimator", 1), (Values{0, 1, 7, 8}));
    EXPECT_EQ(rig.client.output("tap", 1), Values{}) << "a tap's output is ignored";
    rig.client.update();
    EXPECT_EQ(rig.strategy->data, (Buffers{{0, 1, -1, 2}, {0, 1, 7, 8}})) << "the last output is kept";
}

TEST(DeckClient, WhatAStageThrowsPassesThroughAndTheClientStaysUsable) {
    DriverRig rig(ChainKind::Frame, {realSignal(1, 1.0, 2)});
    const auto stage = rig.add("stage");
    rig.add("other");
    const auto refuse = [](const PropertyList&) { throw std::runtime_error("bad option"); };
    stage->onAction = refuse;
    EXPECT_THROW(rig.client.setup(), std::runtime_error);
    EXPECT_THROW(rig.client.frame(Buffers{{1, 2}}), DriverError) << "a stage is called after its setup only";
    stage->onAction = {};
    rig.client.setup();
    stage->onAction = refuse;
    EXPECT_THROW(rig.client.tune("stage", {}), std::runtime_error);
    rig.client.frame(Buffers{{1, 2}});
    EXPECT_FALSE(rig.client.update().message.isNull());
}

TEST(DeckClient, RefusesWhatCannotBe) {
    const SignalFacts good = realSignal(1, 1.0, 2);
    using Change = void (*)(ClientFacts&);
    const Change changes[] = {
        [](auto& facts) { facts.name = "sixteen letters!"; },
        [](auto& facts) { facts.name.clear(); },
        [](auto& facts) { facts.signals.clear(); },
        [](auto& facts) { facts.signals[1].numChannels = -1; },
        [](auto& facts) { facts.signals[0].isComplex = true; },
        [](auto& facts) { facts.signals[0].isInputPort = true; },
        [](auto& facts) { facts.signals[0].sampleTime = -1.0; },
        [](auto& facts) { facts.updatesPerSecond = 0.0; },
    };
    for (const Change& change : changes) {
        ClientFacts facts = factsOf(ChainKind::Time, {good, good});
        change(facts);
        EXPECT_THROW(DeckClient client(facts), DriverError) << &change - changes;
        EXPECT_FALSE(WaveDeckClientRegistry::sInstance.isClientValid(facts.name)) << &change - changes;
    }
    DriverRig rig(ChainKind::Time, {good, realSignal(2, 1.0, 2)});
    EXPECT_THROW(DeckClient twin(factsOf(ChainKind::Time, {good})), DriverError);
    rig.add("stage");
    EXPECT_THROW(rig.add("stage"), DriverError);
    EXPECT_THROW(rig.client.tune("nobody", {}), DriverError);
    EXPECT_THROW(rig.client.resize({1}, {1}), DriverError);
    rig.client.setup();
    EXPECT_THROW(rig.client.frame(Buffers{{1, 2}, {1, 2, 3}}), DriverError) << "no whole points for two channels";
    EXPECT_THROW(rig.client.frame(Buffers{{1, 2}}), DriverError);
    EXPECT_THROW(rig.client.simulationFrame(Buffers{{1, 2}, {1, 2}}), DriverError);
    rig.client.frame(Buffers{{1, 2}, {1, 2, 3, 4}});
    EXPECT_EQ(rig.shown(), (Values{0, 1, 1, 2})) << "of a frame of which one signal is wrong nothing is taken";
}

TEST(DeckClient, StagesGoWithTheClientAndTheBoardStaysWithItsHolders) {
    std::shared_ptr<WaveDeckClientInfo> record;
    std::weak_ptr<RecordingStage> stage;
    {
        DriverRig rig(ChainKind::Time, {realSignal(1, 1.0, 2)});
        stage = rig.add("stage");
        rig.client.setup();
        record = WaveDeckClientRegistry::sInstance("driver test");
        record->getClientSettings().addCustomSetting("key", 7);
        EXPECT_TRUE(record->getFilterImpl("stage")->isActive());
        EXPECT_FALSE(record->getFilterImpl("not in the chain")->isActive());
    }
    EXPECT_TRUE(stage.expired());
    EXPECT_FALSE(record->getFilterImpl("stage")->isActive());
    EXPECT_FALSE(WaveDeckClientRegistry::sInstance.isClientValid("driver test"));
    EXPECT_EQ(boost::any_cast<int>(*record->getClientSettings().find("key")), 7);
}

TEST(DeckClient, UpdatesAreDueByStreamTime) {
    ClientFacts facts = factsOf(ChainKind::Time, {realSignal(1, 0.01, 3)});
    facts.updatesPerSecond = 10.0;
    DriverRig rig(facts);
    rig.add("stage");
    rig.client.setup();
    std::vector<int> updatesAt;
    for (int frame = 1; frame <= 20; ++frame) {
        rig.client.frame(Buffers{{1, 2, 3}});
        if (rig.client.updateDue()) {
            EXPECT_EQ(rig.client.update().event, "updateDataAsync");
            updatesAt.push_back(frame);
        }
    }
    // Frames end at 0.03, 0.06, ...: the first behind each tenth of a second, and exactly at 0.3 and 0.6.
    EXPECT_EQ(updatesAt, (std::vector<int>{4, 7, 10, 14, 17, 20}));
    const auto nothing = rig.client.update();
    EXPECT_EQ(nothing.event, "onProcessNoData");
    EXPECT_TRUE(nothing.message.isNull());
    EXPECT_FALSE(rig.client.updateNow().message.isNull());
}

// Meant for the thread sanitizer.
TEST(DeckClient, OperationsOfAClientRunOneAfterAnother) {
    DriverRig rig(ChainKind::Time, {realSignal(1, 0.01, 8)});
    rig.add("stage");
    rig.client.setup();
    const Buffers frame{Values(8, 1.0)};
    const std::vector<std::function<void()>> jobs = {
        [&] { rig.client.frame(frame); },
        [&] { rig.client.updateDue() ? void(rig.client.update()) : void(rig.client.streamTime()); },
        [&] { rig.client.tune("stage", PropertyList().addDouble("x", 1.0)); },
        [&] { rig.client.query([](int, auto** left, int, auto**) { left[0] = nbCreateDoubleScalar(1.0); }); },
        [&] { rig.client.resize({1}, {8}); },
    };
    std::vector<std::thread> threads;
    for (const auto& job : jobs) {
        threads.emplace_back([&job] {
            for (int i = 0; i < 300; ++i) {
                job();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_DOUBLE_EQ(rig.client.streamTime(), 24.0);
}

}  // namespace
