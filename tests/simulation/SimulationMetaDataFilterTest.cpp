#include "SimulationMetaDataFilter.h"

#include "BFAppSimulationMetaDataFilter.h"
#include "BFSimulationMetaDataFilter.h"
#include "Board.h"
#include "Test.h"
#include "TestClient.h"
#include "streamplug/Exceptions.h"

namespace {

struct Counters {
    unsigned long frames, samples;
    double time;
    bool operator==(const Counters&) const = default;
};

Counters read(const TestClient& client) {
    const auto package = SimulationMetaDataFilter::packageImpl(client.name());
    return {package->getValue<unsigned long>("framesProcessed"), package->getValue<unsigned long>("samplesProcessed"),
            package->getValue<double>("simTime")};
}

TEST(SimulationMetaDataFilter, countsPlainStreams) {
    TestClient client({1, 2});
    client->setIsComplex({0, 1});
    client->setSampleTimes({0.5, 0.25});
    SimulationMetaDataFilter filter;
    EXPECT_EQ((Counters{0, 0, 0}), read(client));
    filter.tuneImpl(client.setup());
    const auto frame = [&] {
        feed(filter, Values(4), 0);
        feed(filter, Values(8), 1);
    };
    feed(filter, Values(4), 0);
    EXPECT_EQ((Counters{0, 0, 0}), read(client));  // the board is written on the last signal
    feed(filter, Values(8), 1);
    EXPECT_EQ((Counters{1, 8, 1.5}), read(client));  // the last sample of the first signal stands at 3 * 0.5
    EXPECT_FALSE(SimulationMetaDataFilter::packageImpl(client.name())->has("simDriftRate"));
    frame();

    // A replay freezes the counters, also over a setup, which resets those of a live source.
    client->setIsDataSourceRepository(true);
    filter.tuneImpl(client.setup());
    frame();
    EXPECT_EQ((Counters{2, 16, 3.5}), read(client));
    client->setIsDataSourceRepository(false);
    filter.tuneImpl(client.sizeChange());
    frame();
    EXPECT_EQ((Counters{3, 24, 5.5}), read(client));
    filter.tuneImpl(client.setup());
    feed(filter, {}, 1);
    EXPECT_EQ((Counters{1, 0, -0.25}), read(client));
}

TEST(SimulationMetaDataFilter, findsItsPlacesAfterASetupDuringReplay) {
    TestClient client({0});  // no channel: no time passes
    client->setIsDataSourceRepository(true);
    SimulationMetaDataFilter filter;
    filter.tuneImpl(client.setup());
    feed(filter, {1, 2});
    client->setIsDataSourceRepository(false);
    feed(filter, {1, 2});
    EXPECT_EQ((Counters{1, 2, 0}), read(client));
    feed(filter, {1, 2}, 5);  // no such signal
    EXPECT_EQ((Counters{1, 2, 0}), read(client));
}

/// A buffer in head form: one time a frame, then the data.
Values headForm(const Values& times, int channels, int frameSize) {
    Values buffer = times;
    buffer.resize(times.size() * static_cast<std::size_t>(1 + channels * frameSize));
    return buffer;
}

TEST(BFSimulationMetaDataFilter, countsAndTakesBackTimeBasedFrames) {
    TestClient client({2});
    client->setTimeBased(true);
    BFSimulationMetaDataFilter filter;
    filter.tuneImpl(client.setup());
    client->setSimulationTime(10);
    feed(filter, headForm({0.5, 1.5}, 2, 4));         // two frames of 2 x 4 samples
    EXPECT_EQ((Counters{4, 16, 1.5}), read(client));  // frames of one channel each are counted
    feed(filter, headForm({2.5}, 2, 4));
    EXPECT_EQ((Counters{6, 24, 2.5}), read(client));
    client->setSimulationTime(2);
    feed(filter, headForm({2.0}, 2, 4));
    EXPECT_EQ((Counters{4, 16, 2.0}), read(client));
    client->setSimulationTime(1);
    feed(filter, headForm({0.5, 0.75, 1.0}, 2, 4));  // more than there is: the counters stop at zero
    EXPECT_EQ((Counters{0, 0, 1.0}), read(client));
    client->setSimulationTime(0.5);
    feed(filter, headForm({0.5}, 2, 4));  // from zero frames it counts forward
    EXPECT_EQ((Counters{2, 8, 0.5}), read(client));

    client->setSimulationTime(10);
    feed(filter, {1, 2});  // too short for a head: no time to be had
    EXPECT_EQ(0.5, read(client).time);
    client->setIsDataSourceRepository(true);
    feed(filter, headForm({3.5}, 2, 4));
    EXPECT_EQ(0.5, read(client).time);
    filter.reset();
    client->setIsDataSourceRepository(false);
    feed(filter, headForm({3.5}, 2, 4));
    EXPECT_EQ((Counters{2, 8, 3.5}), read(client));
}

TEST(BFSimulationMetaDataFilter, countsAndTakesBackSampleBasedFrames) {
    TestClient client({2, 1});
    client->setIsComplex({1, 0});
    client->setTimeBased(false);
    BFSimulationMetaDataFilter filter;
    filter.tuneImpl(client.setup("compiledStepSize=0.5"));
    const auto frame = [&] {
        feed(filter, Values(8), 0);
        feed(filter, Values(3), 1);
    };
    client->setSimulationTime(100);
    frame();
    // The first signal was timed before the frame was counted, one step before 0; the second after it.
    EXPECT_EQ((Counters{1, 7, 0.0}), read(client));
    frame();
    EXPECT_EQ((Counters{2, 14, 0.5}), read(client));
    client->setSimulationTime(-1);
    frame();
    EXPECT_EQ((Counters{1, 7, 0.5}), read(client));  // signal 0 was timed at two frames
    filter.tuneImpl(TestClient::tune("useBlockflowSimTime=true"));
    client->setSimulationTime(42);
    frame();
    EXPECT_EQ((Counters{2, 14, 42}), read(client));
}

TEST(BFSimulationMetaDataFilter, passesSignalsOverThatASetupLeftWithoutAPlace) {
    TestClient client({1, 1});
    BFSimulationMetaDataFilter filter;
    filter.tuneImpl(client.setup());
    client.numChannels = {};
    filter.tuneImpl(client.setup());  // fewer signals
    feed(filter, headForm({1.0}, 1, 4), 1);
    client.numChannels = {1, 1, 1};
    EXPECT_THROW(filter.tuneImpl(client.setup().addInt("compiledStepSize", 1)),
                 streamplug::kit::array::OptionNotExpectedType);  // more of them, but the setup ends midway
    feed(filter, headForm({1.0}, 1, 4), 2);
    EXPECT_EQ((Counters{0, 0, 0}), read(client));
}

TEST(BFAppSimulationMetaDataFilter, hasNoStepBack) {
    TestClient client({1});
    BFAppSimulationMetaDataFilter filter;
    filter.tuneImpl(client.setup());
    feed(filter, headForm({5}, 1, 4));
    feed(filter, headForm({4}, 1, 4));
    EXPECT_EQ((Counters{2, 8, 4}), read(client));
}

}  // namespace
