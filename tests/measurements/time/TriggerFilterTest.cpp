#include "TriggerFilter.h"

#include "Board.h"
#include "Test.h"
#include "TimeChainRig.h"

namespace {

/// A trigger on a client with 0.5 s of span, fed with a square wave of 1 Hz, 100 samples a second.
struct Trigger {
    explicit Trigger(int channels = 1) : client({channels}) {
        client.board().axesTimeTable.set(0, {0.0, 0.5});
        testsupport::markNothing(client, 0.5);
        filter.tuneImpl(client.setup("triggerEnabled=true mode=normal autoLevel=false position=50 customSpan=0.5"));
    }
    void tune(const std::string& options) { filter.tuneImpl(TestClient::tune(options)); }
    TriggerFilter::Queue& queue() { return *TriggerFilter::getTriggerEventDataQueue(client.name()); }
    void feedSeconds(int from, int to, std::size_t frameSize = 50) {
        const auto wave = [](double time) { return std::fmod(time + 0.005, 1.0) < 0.5 ? 1.0 : -1.0; };
        for (double time = from; time < to - 0.005; time += 0.01 * static_cast<double>(frameSize)) {
            feed(filter, frameOf(ramp(time, frameSize, 0.01), {wave}));
        }
    }
    TestClient client;
    TriggerFilter filter;
};

TEST(TriggerFilter, queuesTheWindowsOfItsEvents) {
    Trigger trigger;
    trigger.tune("highLevel=0.75 lowLevel=-0.25");
    trigger.feedSeconds(0, 4);
    ASSERT_EQ(trigger.queue().size(), 3u);
    const triggerStruct& event = trigger.queue()[1];
    expectValues({event.startTime, event.endTime, event.position, event.highLevel, event.lowLevel},
                 {1.745, 2.245, 1.995, 0.75, -0.25}, 1e-12);
    EXPECT_EQ(event.mode, 1);
    EXPECT_EQ(event.signal, 0u);

    const auto package = [&](bool found, unsigned long index, bool clear) {
        return TriggerFilter::packageImpl(trigger.client.name(), 0, found, index, clear);
    };
    EXPECT_EQ(package(false, 0, false)->size(), 1u);
    EXPECT_FALSE(package(false, 0, false)->getValue<bool>("triggerFound"));
    EXPECT_EQ(trigger.queue().size(), 3u);
    const auto found = package(true, 1, false);
    EXPECT_EQ(found->getValue<std::string>("highLevel"), "0.75");
    EXPECT_NEAR(std::stod(found->getValue<std::string>("position")), 1.995, 1e-12);
    EXPECT_TRUE(found->getValue<bool>("triggerFound"));
    EXPECT_EQ(trigger.queue().size(), 1u);  // the event and the one before it have gone
    package(true, 5, false);                // there is none
    EXPECT_EQ(trigger.queue().size(), 1u);
    package(true, 0, true);
    EXPECT_TRUE(trigger.queue().empty());

    // A frame without samples asks for the last window again.
    Values out;
    const double none = 0.0;
    trigger.filter.setInputLength(0);
    trigger.filter.filterImpl(&none, out, 0);
    ASSERT_EQ(trigger.queue().size(), 1u);
    EXPECT_NEAR(trigger.queue()[0].position, 2.995, 1e-12);
}

TEST(TriggerFilter, takesNoFrameWhileTheQueueIsFull) {
    Trigger trigger;
    trigger.queue().resize(999);
    trigger.feedSeconds(0, 2, 100);
    EXPECT_EQ(trigger.queue().size(), 1000u);
    trigger.feedSeconds(2, 4, 100);
    trigger.queue().clear();
    // The edges at 1.995 to 3.995 were not shown to the engine, and none is made up between the samples around them.
    trigger.feedSeconds(4, 6, 100);
    ASSERT_EQ(trigger.queue().size(), 1u);
    EXPECT_NEAR(trigger.queue()[0].position, 4.995, 1e-12);
}

TEST(TriggerFilter, readsModesAndRearm) {
    Trigger trigger;
    EXPECT_FALSE(trigger.client->needsWindowing());
    trigger.tune("mode=once");
    trigger.feedSeconds(0, 4);
    ASSERT_EQ(trigger.queue().size(), 1u);
    EXPECT_EQ(trigger.queue()[0].mode, 2);
    EXPECT_FALSE(trigger.queue()[0].enableOnceMode);
    trigger.tune("rearm=true");  // without "mode" it is not looked at
    trigger.tune("mode=once");   // without "rearm" the flag stays
    trigger.feedSeconds(4, 8);
    EXPECT_EQ(trigger.queue().size(), 1u);
    trigger.tune("mode=once rearm=true");
    trigger.feedSeconds(8, 12);
    EXPECT_EQ(trigger.queue().size(), 2u);

    // Switching off wins over a mode in one list, and switching on again without one leaves it off.
    trigger.tune("mode=normal triggerEnabled=false");
    EXPECT_FALSE(trigger.filter.isActive());
    EXPECT_TRUE(trigger.client->needsWindowing());
    trigger.tune("triggerEnabled=true");
    EXPECT_TRUE(trigger.filter.isActive());
    trigger.feedSeconds(12, 16);
    EXPECT_EQ(trigger.queue().size(), 2u);
    trigger.tune("mode=normal");
    trigger.feedSeconds(16, 20);
    const auto before = trigger.queue().size();
    EXPECT_GT(before, 2u);
    trigger.tune("mode=once");
    trigger.feedSeconds(20, 24);
    EXPECT_EQ(trigger.queue().size(), before + 1) << "another mode has armed it";

    trigger.client->setIsDataSourceRepository(true);
    trigger.tune("");
    EXPECT_FALSE(trigger.filter.isActive());  // nothing triggers a replay
}

// Durations are read together with the type, under the names that the type has. The pulses are 0.5 s long.
TEST(TriggerFilter, readsDurationsWithTheirType) {
    Trigger trigger;
    EXPECT_EQ(trigger.filter.getTypeEnum("unheard of"), 0);
    EXPECT_THROW(trigger.tune("type=runt minDuration=long"), std::invalid_argument);
    const struct {
        const char* options;
        bool fires;
    } rows[] = {{"type=pulse-width minPulseWidth=0.4", true},
                {"type=pulse-width minPulseWidth=0.6", false},
                {"minPulseWidth=0.4", false},
                {"type=pulse-width minDuration=0.4", false},
                {"type=pulse-width minPulseWidth=0", true},
                {"type=pulse-width maxPulseWidth=0.4", false}};
    for (int second = 0; const auto& row : rows) {
        trigger.queue().clear();
        trigger.tune(std::string("polarity=positive ") + row.options);
        trigger.feedSeconds(second, second + 4);
        EXPECT_EQ(!trigger.queue().empty(), row.fires) << row.options;
        second += 4;
    }
}

TEST(TriggerFilter, hasASignalAndChannelOfItsOwn) {
    Trigger trigger;
    trigger.filter.tuneImpl(TestClient::tune("measurementChannel=7").addInt("triggerChannel", 1));
    trigger.feedSeconds(0, 4);  // there is no second channel: the frame is not looked at
    EXPECT_TRUE(trigger.queue().empty());
    trigger.filter.tuneImpl(TestClient::tune().addDouble("triggerChannel", 0.0));
    trigger.feedSeconds(4, 8);
    EXPECT_FALSE(trigger.queue().empty());

    double lastTime = 0.0;
    deckutil::TimeDomainTriggerController engine;
    const Values frame{1, 2, 0, 5};
    trigger.filter.setInputLength(frame.size());
    EXPECT_TRUE(trigger.filter.addDataPointsToTrigger(frame.data(), 0, 0, engine, false, 1.0, lastTime));
    EXPECT_EQ(lastTime, 2.0);
    trigger.filter.setInputLength(0);
    EXPECT_FALSE(trigger.filter.addDataPointsToTrigger(frame.data(), 0, 0, engine, false, 1.0, lastTime));
}

TEST(TriggerFilter, crossesNothingFromOneChannelToAnother) {
    Trigger trigger(2);
    const std::vector<std::function<double(double)>> lowAndHigh{[](double) { return -1.0; },
                                                                [](double) { return 1.0; }};
    feed(trigger.filter, frameOf(ramp(0, 100, 0.01), lowAndHigh));
    trigger.filter.tuneImpl(TestClient::tune().addInt("triggerChannel", 1));
    feed(trigger.filter, frameOf(ramp(1, 100, 0.01), lowAndHigh));
    EXPECT_TRUE(trigger.queue().empty());
}

}  // namespace
