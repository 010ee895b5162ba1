#include "StageLibrary.h"

#include "DriverRig.h"

namespace {

TEST(StageLibrary, LoadsByNameAndMakesStagesThatRun) {
    const StageLibrary library(FAKEDECK_PATH);
    EXPECT_EQ(library.version(), "1.2.3");
    EXPECT_EQ(library.buildDate(), "");
    DeckClient client(factsOf(ChainKind::Frame, {realSignal(1, 0.5, 2)}));
    client.addStage("fake_tap_filter", library.makeFilter("fake_tap_filter"));
    client.addStage("fake_gain_filter", library.makeFilter("fake_gain_filter"));
    client.setStrategy("fake_strategy", library.makeStrategy("fake_strategy"));
    client.setup();
    client.frame(Buffers{{1, 2, 3}});
    const auto update = client.update();
    EXPECT_EQ(MessageText().write(*update.message), R"({"size":6})");
    const auto seen = client.query(library.query("getDoublesSeenImpl"));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(nbGetScalar(seen[0].get()), 6.0);
}

TEST(StageLibrary, SaysWhatIsMissing) {
    EXPECT_THROW(StageLibrary("libnosuchdeck.so"), DriverError);
    const StageLibrary library(FAKEDECK_PATH);
    EXPECT_THROW((void)library.makeFilter("no_such_filter"), DriverError);
    EXPECT_THROW((void)library.makeFilter("fake_strategy"), DriverError);
    EXPECT_THROW((void)library.query("malloc"), DriverError);
    EXPECT_FALSE(library.offers("malloc")) << "names of what the library depends on are not its own";
}

}  // namespace
