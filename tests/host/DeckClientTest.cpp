#include "DeckClient.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DriverError.h"
#include "MessageText.h"
#include "RecordingStage.h"
#include "StageLibrary.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace {

using wavedeck::PropertyList;
using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::DeckClient;
using wavedeck::driver::DriverError;
using wavedeck::driver::SignalFacts;
using Buffers = std::vector<std::vector<double>>;

ClientFacts factsOf(ChainKind kind, std::vector<SignalFacts> signals) {
    ClientFacts facts;
    facts.name = "driver test";
    facts.kind = kind;
    facts.signals = std::move(signals);
    return facts;
}

/// A client with recording stages and strategy.
struct Rig {
    explicit Rig(const ClientFacts& facts) : client(facts) { client.setStrategy("recording", strategy); }

    std::shared_ptr<RecordingStage> add(const std::string& name, RecordingStage::Replace replace = {}) {
        auto stage = std::make_shared<RecordingStage>(name, log, std::move(replace));
        client.addStage(name, stage);
        return stage;
    }

    std::shared_ptr<CallLog> log = std::make_shared<CallLog>();
    std::shared_ptr<RecordingStrategy> strategy = std::make_shared<RecordingStrategy>();
    DeckClient client;
};

const SignalFacts oneChannel{"a", 1, false, 0.5, 0.0, 2, false};
const SignalFacts twoChannels{"b", 2, false, 0.25, 0.0, 2, false};

TEST(DeckClient, CallsStageByStageAndWithinAStageSignalBySignal) {
    Rig rig(factsOf(ChainKind::Time, {oneChannel, twoChannels}));
    rig.add("first");
    const auto silent = rig.add("second");
    rig.add("third");
    rig.client.setup();
    silent->active = false;
    rig.log->clear();
    rig.client.frame(Buffers{{1, 2}, {3, 4, 5, 6}});
    EXPECT_EQ(*rig.log, (CallLog{"first pre", "second pre", "third pre", "first filter 0", "first filter 1",
                                 "third filter 0", "third filter 1"}));
}

TEST(DeckClient, HandsTheRecordTheRawFrameAndTheOthersTimesAndChannels) {
    Rig rig(factsOf(ChainKind::Time, {oneChannel, twoChannels}));
    const auto record = rig.add("simulation_meta_data_filter");
    const auto tap = rig.add("time_signal_statistics_filter");
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2}, {3, 4, 5, 6}});
    rig.client.frame(Buffers{{7, 8}, {9, 10, 11, 12}});
    EXPECT_EQ(record->seen, (Buffers{{7, 8}, {9, 10, 11, 12}}));
    EXPECT_EQ(tap->seen, (Buffers{{1.0, 1.5, 7, 8}, {0.5, 0.75, 9, 10, 11, 12}}));
    rig.client.update();
    EXPECT_EQ(rig.strategy->data,
              (Buffers{{0, 0.5, 1, 1.5, 1, 2, 7, 8}, {0, 0.25, 0.5, 0.75, 3, 4, 9, 10, 5, 6, 11, 12}}));
    EXPECT_EQ(rig.strategy->numChannels, (std::vector<int>{1, 2}));
    EXPECT_EQ(rig.strategy->numPoints, (std::vector<int>{4, 4}));
}

TEST(StageLibrary, LoadsByNameAndMakesStagesThatRun) {
    const wavedeck::driver::StageLibrary library(FAKEDECK_PATH);
    EXPECT_EQ(library.version(), "1.2.3");
    EXPECT_EQ(library.buildDate(), "");
    DeckClient client(factsOf(ChainKind::Frame, {oneChannel}));
    client.addStage("fake_tap_filter", library.makeFilter("fake_tap_filter"));
    client.addStage("fake_gain_filter", library.makeFilter("fake_gain_filter"));
    client.setStrategy("fake_strategy", library.makeStrategy("fake_strategy"));
    client.setup();
    client.frame(Buffers{{1, 2, 3}});
    const auto update = client.update();
    EXPECT_EQ(update.event, "updateDataAsync");
    EXPECT_EQ(wavedeck::driver::MessageText().write(*update.message), R"({"size":6})");
    EXPECT_TRUE(client.update().message.isNull());
    const auto seen = client.query(library.query("getDoublesSeenImpl"));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(nbGetScalar(seen[0].get()), 6.0);
}

TEST(StageLibrary, SaysWhatIsMissing) {
    EXPECT_THROW(wavedeck::driver::StageLibrary("libnosuchdeck.so"), DriverError);
    const wavedeck::driver::StageLibrary library(FAKEDECK_PATH);
    EXPECT_THROW((void)library.makeFilter("no_such_filter"), DriverError);
    EXPECT_THROW((void)library.makeFilter("fake_strategy"), DriverError);
    EXPECT_THROW((void)library.query("malloc"), DriverError);
    EXPECT_FALSE(library.offers("malloc"));
}

}  // namespace
