#include "TriggerFilter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>
#include <vector>

#include "Board.h"
#include "TimeChainRig.h"

namespace dspwavedecks {
namespace {

using testsupport::feed;
using testsupport::frameOf;
using testsupport::PropertyList;
using testsupport::TestClient;
using testsupport::timesFrom;

/// A trigger on a client with 0.5 s of span, fed with a square wave of 1 Hz, 100 samples a second.
struct Trigger {
    explicit Trigger(int channels = 1) : client({channels}) {
        client.board().axesTimeTable.set(0, {0.0, 0.5});
        testsupport::markNothing(client, 0.5);
        filter.tuneImpl(client.setup()
                            .addLogical("triggerEnabled", true)
                            .addChar("mode", "normal")
                            .addLogical("autoLevel", false)
                            .addDouble("position", 50)
                            .addDouble("customSpan", 0.5));
    }
    TriggerFilter::Queue& queue() { return *TriggerFilter::getTriggerEventDataQueue(client.name()); }
    void feedSeconds(int from, int to, std::size_t frameSize = 50) {
        for (long i = from * 100; i < to * 100; i += static_cast<long>(frameSize)) {
            const auto wave = [](double time) { return std::fmod(time + 0.005, 1.0) < 0.5 ? 1.0 : -1.0; };
            feed(filter, frameOf(timesFrom(i, frameSize, 0.01), {wave}));
        }
    }
    TestClient client;
    TriggerFilter filter;
};

TEST(TriggerFilter, queuesTheWindowsOfItsEvents) {
    Trigger trigger;
    trigger.filter.tuneImpl(TestClient::tune().addDouble("highLevel", 0.75).addDouble("lowLevel", -0.25));
    trigger.feedSeconds(0, 4);
    ASSERT_EQ(trigger.queue().size(), 3u);
    const triggerStruct& event = trigger.queue()[1];
    EXPECT_NEAR(event.startTime, 1.745, 1e-12);
    EXPECT_NEAR(event.endTime, 2.245, 1e-12);
    EXPECT_NEAR(event.position, 1.995, 1e-12);
    EXPECT_EQ(event.highLevel, 0.75);
    EXPECT_EQ(event.lowLevel, -0.25);
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
    std::vector<double> out;
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
    trigger.filter.tuneImpl(TestClient::tune().addChar("mode", "once"));
    trigger.feedSeconds(0, 4);
    ASSERT_EQ(trigger.queue().size(), 1u);
    EXPECT_EQ(trigger.queue()[0].mode, 2);
    EXPECT_FALSE(trigger.queue()[0].enableOnceMode);
    trigger.filter.tuneImpl(TestClient::tune().addLogical("rearm", true));  // without "mode" it is not looked at
    trigger.filter.tuneImpl(TestClient::tune().addChar("mode", "once"));    // without "rearm" the flag stays
    trigger.feedSeconds(4, 8);
    EXPECT_EQ(trigger.queue().size(), 1u);
    trigger.filter.tuneImpl(TestClient::tune().addChar("mode", "once").addLogical("rearm", true));
    trigger.feedSeconds(8, 12);
    EXPECT_EQ(trigger.queue().size(), 2u);

    // Switching off wins over a mode in one list, and switching on again without one leaves it off.
    trigger.filter.tuneImpl(TestClient::tune().addChar("mode", "normal").addLogical("triggerEnabled", false));
    EXPECT_FALSE(trigger.filter.isActive());
    EXPECT_TRUE(trigger.client->needsWindowing());
    trigger.filter.tuneImpl(TestClient::tune().addLogical("triggerEnabled", true));
    EXPECT_TRUE(trigger.filter.isActive());
    trigger.feedSeconds(12, 16);
    EXPECT_EQ(trigger.queue().size(), 2u);
    trigger.filter.tuneImpl(TestClient::tune().addChar("mode", "normal"));
    trigger.feedSeconds(16, 20);
    EXPECT_GT(trigger.queue().size(), 2u);

    trigger.client->setIsDataSourceRepository(true);
    trigger.filter.tuneImpl(TestClient::tune());
    EXPECT_FALSE(trigger.filter.isActive());  // nothing triggers a replay
}

TEST(TriggerFilter, readsItsWordsAndDurations) {
    Trigger trigger;
    TriggerFilter& filter = trigger.filter;
    EXPECT_EQ(filter.getModeEnum("once"), 2);
    EXPECT_EQ(filter.getTypeEnum("transition"), 2);
    EXPECT_EQ(filter.getPolarityEnum("fall-time"), -1);
    EXPECT_EQ(filter.getPolarityEnum("inside"), 1);
    EXPECT_EQ(filter.getTypeEnum("unheard of"), 0);

    EXPECT_THROW(filter.tuneImpl(TestClient::tune().addChar("type", "runt").addChar("minDuration", "long")),
                 std::invalid_argument);
    // Durations are read together with the type, under the names that the type has: pulses of 0.5 s.
    int next = 0;
    const auto events = [&](PropertyList list) {
        trigger.queue().clear();
        filter.tuneImpl(list.addChar("polarity", "positive"));
        const int from = next;
        trigger.feedSeconds(from, from + 4);
        next += 4;
        return trigger.queue().size();
    };
    EXPECT_GT(events(TestClient::tune().addChar("type", "pulse-width").addChar("minPulseWidth", "0.4")), 0u);
    EXPECT_EQ(events(TestClient::tune().addChar("type", "pulse-width").addChar("minPulseWidth", "0.6")), 0u);
    EXPECT_EQ(events(TestClient::tune().addChar("minPulseWidth", "0.4")), 0u);
    EXPECT_EQ(events(TestClient::tune().addChar("type", "pulse-width").addChar("minDuration", "0.4")), 0u);
    EXPECT_GT(events(TestClient::tune().addChar("type", "pulse-width").addChar("minPulseWidth", "0")), 0u);
    EXPECT_EQ(events(TestClient::tune().addChar("type", "pulse-width").addChar("maxPulseWidth", "0.4")), 0u);
}

TEST(TriggerFilter, hasASignalAndChannelOfItsOwn) {
    Trigger trigger;
    trigger.filter.tuneImpl(TestClient::tune().addInt("measurementChannel", 7).addInt("triggerChannel", 1));
    trigger.feedSeconds(0, 4);  // there is no second channel: the frame is not looked at
    EXPECT_TRUE(trigger.queue().empty());
    trigger.filter.tuneImpl(TestClient::tune().addDouble("triggerChannel", 0.0));
    trigger.feedSeconds(4, 8);
    EXPECT_FALSE(trigger.queue().empty());

    double lastTime = 0.0;
    deckutil::TimeDomainTriggerController engine;
    const std::vector<double> frame{1, 2, 0, 5};
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
    feed(trigger.filter, frameOf(timesFrom(0, 100, 0.01), lowAndHigh));
    trigger.filter.tuneImpl(TestClient::tune().addInt("triggerChannel", 1));
    feed(trigger.filter, frameOf(timesFrom(100, 100, 0.01), lowAndHigh));
    EXPECT_TRUE(trigger.queue().empty());
}

}  // namespace
}  // namespace dspwavedecks
