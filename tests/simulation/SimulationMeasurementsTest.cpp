// The time measurements of a simulation: which part of the cache they measure, how the cache grows, and that they read
// what those of a stream read.

#include "BFBilevelMeasurementsFilter.h"
#include "BFMeasurementFilterRangeCalc.h"
#include "BFMeasurementsDataCacheFilter.h"
#include "BFTimePeakFinderFilter.h"
#include "BFTimeSignalStatisticsFilter.h"
#include "BFTriggerFilter.h"
#include "Board.h"
#include "LimitedAllocation.h"
#include "MagPhaseFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace {

using Range = std::vector<unsigned long>;

MeasurementsDataCache& cacheOf(const TestClient& client) {
    return *MeasurementsDataCacheFilter::findCache(client.board());
}

/// One channel of 0, 1, ... at whole seconds from first to last.
Values seconds(int first, int last) {
    const Values times = ramp(first, static_cast<std::size_t>(last - first + 1));
    return joined({times, times});
}

/// A client with a cache of one sample a second from 0 to `newest`, and a filter for the calculator to ask.
struct Display {
    Display(int newest, bool automatic, double custom) {
        client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
        client.board().addCustomSetting(MeasurementsDataCacheFilter::measurementsDataCache, MeasurementsDataCache());
        client.board().axesTimeTable.set(0, {0.0, 10.0, 0});
        const auto frame = seconds(0, newest);
        cacheOf(client).addData(frame.data(), 0, frame.size() / 2);
        filter.tuneImpl(client.setup().addLogical("autoSpan", automatic).addDouble("customSpan", custom));
        filter.setInputLength(12);  // six points
    }
    void setup(double startTime, double autoTimeRange, bool frameMode) {
        const auto list = client.setup().addDouble("startTime", startTime).addDouble("autoTimeRange", autoTimeRange);
        calc.setPropertiesOnSetup(PropertyList(list).addLogical("isBlockInFrameProcMode", frameMode));
    }
    Range range() { return calc.getDataRange(filter, 0); }

    TestClient client;
    BFTimeSignalStatisticsFilter filter;
    BFMeasurementFilterRangeCalc calc;
};

struct Facts {
    bool automatic = false, anew = false, frameMode = false, replay = false, onePeriod = false;
    double optionStart = 0.0, autoRange = 10.0, custom = 0.0, simStart = 0.0, sampleTime = 1.0;
    wavedeck::AxesTime axes = {0.0, 10.0, 0};
};

struct Row {
    int newest;
    Range range;
    Facts facts = {};
};

// Index i of the cache is second i.
const Row rows[] = {
    {0, {0, 0}},                              // nothing but the start of the simulation
    {7, {0, 8}},                              // inside the first span
    {10, {0, 11}},                            // at its end it has not moved
    {25, {20, 26}},                           // moved by whole spans
    {30, {20, 31}},                           // a whole number of spans shows the last
    {22, {20, 23}, {.axes = {0.0, 2.2, 0}}},  // ten of its spans, but for rounding
    {25, {20, 26}, {.automatic = true}},
    {25, {23, 26}, {.optionStart = 3.0}},
    {25, {5, 16}, {.axes = {5.0, 10.0, 1}}},  // axes driven from elsewhere stand still
    {25, {0, 9}, {.anew = true, .custom = 8.0, .axes = {5.0, 10.0, 1}}},
    {10, {0, 11}, {.replay = true}},  // a replay counts as moved
    {25, {20, 26}, {.replay = true}},
    {25, {15, 26}, {.onePeriod = true}},  // ends with the newest sample
    {25, {15, 26}, {.onePeriod = true, .optionStart = 2.0, .simStart = 2.0}},
    {25, {17, 26}, {.automatic = true, .onePeriod = true, .optionStart = 2.0, .simStart = 2.0}},
    {25, {24, 26}, {.automatic = true, .autoRange = 8.0}},
    {25, {20, 26}, {.automatic = true, .frameMode = true, .autoRange = 8.0}},  // on frames that of the axes
    {27, {25, 28}, {.automatic = true, .anew = true}},                         // five intervals of the frame in hand
    {25, {0, 26}, {.automatic = true, .anew = true, .frameMode = true, .sampleTime = 0.0}},        // up to now
    {25, {24, 26}, {.automatic = true, .anew = true, .sampleTime = 0.0, .axes = {2.0, 10.0, 0}}},  // 8 s in all
    {25, {0, 26}, {.optionStart = 30.0}},       // nothing there yet: all that is held
    {25, {0, 26}, {.axes = {-20.0, 10.0, 1}}},  // nor any more
    {25, {5, 5}, {.axes = {5.0, -3.0, 1}}},     // ends before it begins
    {25, {0, 0}, {.anew = true}},               // no span
    {25, {0, 0}, {.axes = {0.0, 0.0, 0}}},
};

TEST(BFMeasurementFilterRangeCalc, findsTheSpanInTheCache) {
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        const Row& row = rows[index];
        Display display(row.newest, row.facts.automatic, row.facts.custom);
        display.setup(row.facts.optionStart, row.facts.autoRange, row.facts.frameMode);
        display.client.board().axesTimeTable.set(0, row.facts.axes);
        display.client->setIsDataSourceRepository(row.facts.replay);
        display.client->setTimeSpanOneFramePeriod(row.facts.onePeriod);
        display.client->setSimStartTime(row.facts.simStart);
        display.client->setSampleTimes({row.facts.sampleTime});
        display.client->setSimulationTime(25.0);
        display.filter.setForceComputeSpan(row.facts.anew);
        EXPECT_EQ(display.range(), row.range) << index;
        EXPECT_FALSE(display.filter.getForceComputeSpan());
    }
    Display atStart(0, false, 0.0);
    EXPECT_EQ(atStart.range(), Range({0, 0}));
    EXPECT_TRUE(atStart.filter.getForceComputeSpan());  // nothing was computed yet
}

TEST(BFMeasurementFilterRangeCalc, fastRestartGoesBackToTheSnapshot) {
    Display display(27, true, 0.0);
    display.filter.setForceComputeSpan(false);
    display.setup(0, 10, false);
    display.client->setFastRestart(true);
    display.setup(0, 5, false);
    EXPECT_EQ(display.range(), Range({25, 28}));  // its length is taken first, and then the snapshot comes back
    EXPECT_EQ(display.range(), Range({20, 28}));
    // A setup without a fast restart drops the snapshot; a fast restart then finds none.
    display.client->setFastRestart(false);
    display.setup(0, 5, false);
    display.client->setFastRestart(true);
    EXPECT_EQ(display.range(), Range({25, 28}));
    EXPECT_EQ(display.range(), Range({25, 28}));
}

TEST(BFMeasurementsDataCacheFilter, growsByTheRuleUpToItsLimit) {
    TestClient client;
    client.board().axesTimeTable.set(0, {0.0, 1e9});
    BFMeasurementsDataCacheFilter filter(1040);
    filter.tuneImpl(client.setup());
    MeasurementsDataCache& cache = cacheOf(client);
    cache.capacity = 1000;
    cache.setCapacity(1000);
    feed(filter, seconds(0, 999));
    EXPECT_EQ(cache.capacity, 1000u);
    {
        const testsupport::AllocationLimit limit(4000);  // less than the ring asks for
        feed(filter, seconds(1000, 1004));
    }
    EXPECT_EQ(cache.capacity, 1000u);
    EXPECT_EQ(cache.timeAt(0), 5.0);  // it went on as it was
    feed(filter, seconds(1005, 1014));
    EXPECT_EQ(cache.capacity, 1025u);
    EXPECT_FALSE(MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(client.name()));
    feed(filter, seconds(1015, 1050));  // 1051 are more than the limit
    EXPECT_EQ(cache.capacity, 1040u);
    EXPECT_TRUE(MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(client.name()));
    feed(filter, seconds(1051, 1100));
    EXPECT_EQ(cache.size(), 1040u);
    EXPECT_EQ(cache.timeAt(1039), 1100.0);
    EXPECT_TRUE(cache.memoryLimitReached);
    filter.resetImpl();
    feed(filter, seconds(0, 9));
    EXPECT_FALSE(cache.memoryLimitReached);  // there is room again
}

TEST(BFMeasurementsDataCacheFilter, beginsAnewWithEachSpan) {
    TestClient client;
    client.board().axesTimeTable.set(0, {0.0, 10.0});
    BFMeasurementsDataCacheFilter filter;
    filter.tuneImpl(client.setup());
    MeasurementsDataCache& cache = cacheOf(client);
    feed(filter, seconds(0, 4));
    feed(filter, seconds(5, 10));
    EXPECT_EQ(cache.size(), 11u);
    feed(filter, seconds(11, 15));
    EXPECT_EQ(cache.size(), 16u);
    feed(filter, seconds(16, 22));  // runs over 20
    EXPECT_EQ(cache.size(), 7u);
    client->setIsDataSourceRepository(true);  // a replay is cached too, and a setup empties the cache all the same
    feed(filter, seconds(23, 24));
    EXPECT_EQ(cache.size(), 9u);
    feed(filter, seconds(30, 31));  // begins where a span ends
    EXPECT_EQ(cache.size(), 2u);
    filter.tuneImpl(client.setup("autoSpan=true autoTimeRange=3.0"));
    EXPECT_EQ(cache.size(), 0u);
    feed(filter, seconds(22, 24));
    feed(filter, seconds(25, 28));  // the automatic span ends at 27
    EXPECT_EQ(cache.size(), 4u);
}

/// A new run clears the record, and an empty span does nothing.
template <class Filter>
void expectToBeginAnewWithARun() {
    Display display(0, false, 0.0);
    display.client.board().axesTimeTable.set(0, {0.0, 40.0, 0});
    Values frame = seconds(0, 40);
    for (std::size_t i = 41; i < 82; ++i) {
        frame[i] = 0.1 * frame[i] + (std::fmod(frame[i], 7.0) < 3.0 ? 0.0 : 5.0);
    }
    cacheOf(display.client).reset();
    cacheOf(display.client).addData(frame.data(), 0, 41);
    const auto text = [&] {
        std::ostringstream stream;
        auto package = Filter::packageImpl(display.client.name());
        package->set("timeRange", std::string());
        package->stringify(stream);
        return stream.str();
    };
    Filter filter;
    const auto setup = display.client.setup("showTransitions=true showCycles=true");
    filter.tuneImpl(setup);
    const std::string blank = text();
    filter.setForceComputeSpan(false);
    feed(filter, frame);
    EXPECT_NE(text(), blank);
    filter.tuneImpl(setup);
    cacheOf(display.client).reset();
    feed(filter, frame);
    EXPECT_EQ(text(), blank);
}

TEST(SimulationMeasurements, beginAnewWithARunAndTellTheirSpan) {
    expectToBeginAnewWithARun<BFTimeSignalStatisticsFilter>();
    expectToBeginAnewWithARun<BFTimePeakFinderFilter>();
    expectToBeginAnewWithARun<BFBilevelMeasurementsFilter>();
    // Only the statistics of a simulation tell their span.
    Display display(25, false, 0.0);
    display.filter.setForceComputeSpan(false);
    feed(display.filter, seconds(25, 25));
    EXPECT_EQ(board::read<signalStatsStruct>(display.client.board(), "signalStats").timeRange, Values({20, 25}));
}

TEST(BFTriggerFilter, flushesAtTheEndOfTheSimulation) {
    TestClient client;
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
    BFTriggerFilter filter;
    filter.tuneImpl(client.setup("triggerEnabled=true mode=normal autoLevel=false level=5.5 position=50 customSpan=8"));
    client->setSimStopTime(10.0);
    EXPECT_TRUE(filter.needToFlushQueue(10.0));
    EXPECT_FALSE(filter.needToFlushQueue(std::nextafter(10.0, 0.0)));
    feed(filter, seconds(0, 8));
    auto& queue = *TriggerFilter::getTriggerEventDataQueue(client.name());
    EXPECT_TRUE(queue.empty());  // the window ends at 9.5
    client->setSimStopTime(8.0);
    feed(filter, {8.0, 8.0});
    ASSERT_EQ(queue.size(), 1u);
    EXPECT_EQ(queue[0].startTime, 3.0);  // cut on both sides about the trigger point
    EXPECT_EQ(queue[0].endTime, 8.0);
    EXPECT_EQ(queue[0].position, 5.5);
    client->setSimStopTime(infinity);
    EXPECT_FALSE(filter.needToFlushQueue(1e9));
    client->setSimStatus(wavedeck::SimStatus::Ended);
    EXPECT_TRUE(filter.needToFlushQueue(1.0));
    client->setIsDataSourceRepository(true);
    // The span's options are read at a tune: without a sample time an automatic span is that option.
    client->setSampleTimes({0.0});
    filter.tuneImpl(TestClient::tune("clientID=client autoTimeRange=3 autoSpan=true"));
    EXPECT_TRUE(filter.isActive());  // a replay is triggered too
    EXPECT_EQ(filter.getTimeRange(0, client.board()), 3.0);
}

}  // namespace
