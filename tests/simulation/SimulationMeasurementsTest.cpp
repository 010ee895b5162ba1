// The time measurements of a simulation: which part of the cache they measure, how the cache grows, and that they read
// what those of a stream read.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <sstream>

#include "BFBilevelMeasurementsFilter.h"
#include "BFMeasurementFilterRangeCalc.h"
#include "BFMeasurementsDataCacheFilter.h"
#include "BFTimePeakFinderFilter.h"
#include "BFTimeSignalStatisticsFilter.h"
#include "BFTriggerFilter.h"
#include "Board.h"
#include "FailingAllocation.h"
#include "MagPhaseFilter.h"
#include "TestClient.h"

namespace dspwavedecks {
namespace {

using testsupport::feed;
using testsupport::PropertyList;
using testsupport::TestClient;
using Range = std::vector<unsigned long>;

MeasurementsDataCache& cacheOf(const TestClient& client) {
    return *MeasurementsDataCacheFilter::findCache(client.board());
}

/// One channel of 0, 1, ... at whole seconds from first to last.
std::vector<double> seconds(int first, int last) {
    std::vector<double> frame;
    for (int block = 0; block < 2; ++block) {
        for (int i = first; i <= last; ++i) {
            frame.push_back(i);
        }
    }
    return frame;
}

/// A client with a cache of one sample a second from 0 to `newest`, and a filter for the calculator to ask.
struct Display {
    explicit Display(int newest) {
        client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
        client.board().addCustomSetting(MeasurementsDataCacheFilter::measurementsDataCache, MeasurementsDataCache());
        const auto frame = seconds(0, newest);
        cacheOf(client).addData(frame.data(), 0, frame.size() / 2);
        filter.tuneImpl(client.setup());
        filter.setInputLength(12);  // six points
        filter.setForceComputeSpan(false);
    }
    void axes(double start, double span, unsigned long flag = 0) {
        client.board().axesTimeTable.set(0, {start, span, flag});
    }
    void spanOptions(bool automatic, double custom) {
        filter.tuneImpl(TestClient::tune().addLogical("autoSpan", automatic).addDouble("customSpan", custom));
    }
    PropertyList options(double startTime, double autoTimeRange, bool frameMode) {
        return client.setup()
            .addDouble("startTime", startTime)
            .addDouble("autoTimeRange", autoTimeRange)
            .addLogical("isBlockInFrameProcMode", frameMode);
    }
    Range range() { return calc.getDataRange(filter, 0); }

    TestClient client;
    BFTimeSignalStatisticsFilter filter;
    BFMeasurementFilterRangeCalc calc;
};

struct Row {
    const char* what;
    int newest;
    std::function<void(Display&)> set;
    Range range;
};

// The span of the axes is 10 s; index i of the cache is second i.
const Row rows[] = {
    {"only the start of the simulation", 0, [](Display&) {}, {0, 0}},
    {"inside the first span", 7, [](Display&) {}, {0, 8}},
    {"at its end it has not moved", 10, [](Display&) {}, {0, 11}},
    {"moved by whole spans", 25, [](Display&) {}, {20, 26}},
    {"a whole number of spans shows the last", 30, [](Display&) {}, {20, 31}},
    {"automatic", 25, [](Display& d) { d.spanOptions(true, 0); }, {20, 26}},
    {"an option moves the start",
     25,
     [](Display& d) { d.calc.setPropertiesOnSetup(d.options(3, 10, false)); },
     {23, 26}},
    {"axes driven from elsewhere stand still", 25, [](Display& d) { d.axes(5, 10, 1); }, {5, 16}},
    {"driven, and the span measured anew",
     25,
     [](Display& d) {
         d.axes(5, 10, 1);
         d.spanOptions(false, 8);
         d.filter.setForceComputeSpan(true);
     },
     {0, 9}},
    {"a replay counts as moved", 10, [](Display& d) { d.client->setIsDataSourceRepository(true); }, {0, 11}},
    {"a replay further on", 25, [](Display& d) { d.client->setIsDataSourceRepository(true); }, {20, 26}},
    {"one frame period ends with the newest",
     25,
     [](Display& d) { d.client->setTimeSpanOneFramePeriod(true); },
     {15, 26}},
    {"one frame period of a later start",
     25,
     [](Display& d) {
         d.client->setTimeSpanOneFramePeriod(true);
         d.client->setSimStartTime(2);
         d.calc.setPropertiesOnSetup(d.options(2, 10, false));
     },
     {15, 26}},
    {"the same, automatic",
     25,
     [](Display& d) {
         d.client->setTimeSpanOneFramePeriod(true);
         d.client->setSimStartTime(2);
         d.calc.setPropertiesOnSetup(d.options(2, 10, false));
         d.spanOptions(true, 0);
     },
     {17, 26}},
    {"automatic on samples takes its own span",
     25,
     [](Display& d) {
         d.calc.setPropertiesOnSetup(d.options(0, 8, false));
         d.spanOptions(true, 0);
     },
     {24, 26}},
    {"automatic on frames takes the axes'",
     25,
     [](Display& d) {
         d.calc.setPropertiesOnSetup(d.options(0, 8, true));
         d.spanOptions(true, 0);
     },
     {20, 26}},
    {"measured anew: five intervals",
     27,
     [](Display& d) {
         d.spanOptions(true, 0);
         d.filter.setForceComputeSpan(true);
     },
     {25, 28}},
    {"without a sample time, on frames: up to now",
     25,
     [](Display& d) {
         d.calc.setPropertiesOnSetup(d.options(0, 8, true));
         d.client->setSampleTimes({0.0});
         d.client->setSimulationTime(25);
         d.spanOptions(true, 0);
         d.filter.setForceComputeSpan(true);
     },
     {0, 26}},
    {"without a span: the newest sample", 25, [](Display& d) { d.axes(0, 0); }, {25, 26}},
};

TEST(BFMeasurementFilterRangeCalc, findsTheSpanInTheCache) {
    for (const Row& row : rows) {
        Display display(row.newest);
        display.axes(0, 10);
        row.set(display);
        EXPECT_EQ(display.range(), row.range) << row.what;
        EXPECT_FALSE(display.filter.getForceComputeSpan());
    }
    Display atStart(0);
    atStart.filter.setForceComputeSpan(true);
    atStart.range();
    EXPECT_TRUE(atStart.filter.getForceComputeSpan());  // nothing was computed yet
    cacheOf(atStart.client).reset();
    EXPECT_EQ(atStart.range(), Range({0, 0}));
}

TEST(BFMeasurementFilterRangeCalc, fastRestartGoesBackToTheSnapshot) {
    Display display(27);
    display.axes(0, 10);
    display.spanOptions(true, 0);
    display.calc.setPropertiesOnSetup(display.options(0, 10, false));
    display.client->setFastRestart(true);
    display.calc.setPropertiesOnSetup(display.options(0, 5, false));
    EXPECT_EQ(display.range(), Range({25, 28}));  // its length is taken first, and then the snapshot comes back
    EXPECT_EQ(display.range(), Range({20, 28}));
    // A setup without a fast restart drops the snapshot; a fast restart then finds none.
    display.client->setFastRestart(false);
    display.calc.setPropertiesOnSetup(display.options(0, 5, false));
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
    filter.tuneImpl(client.setup().addLogical("autoSpan", true).addDouble("autoTimeRange", 3.0));
    EXPECT_EQ(cache.size(), 0u);
    feed(filter, seconds(22, 24));
    feed(filter, seconds(25, 28));  // the automatic span ends at 27
    EXPECT_EQ(cache.size(), 4u);
}

TEST(SimulationMeasurements, readWhatThoseOfAStreamRead) {
    const auto wave = [](double time) { return std::fmod(time, 7.0) < 3.0 ? 0.1 * time : 5.0 + 0.1 * time; };
    std::vector<double> frame = seconds(0, 40);
    for (std::size_t i = 41; i < 82; ++i) {
        frame[i] = wave(frame[i]);
    }
    TestClient client;
    client->setOffsets({100.0});
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
    client.board().axesTimeTable.set(0, {0.0, 40.0});
    BFMeasurementsDataCacheFilter cacheFilter;
    cacheFilter.tuneImpl(client.setup());
    feed(cacheFilter, frame);
    const auto run = [&](auto&& stage) {
        stage.tuneImpl(client.setup()
                           .addLogical("showTransitions", true)
                           .addLogical("showCycles", true)
                           .addLogical("autoStateLevel", false)
                           .addDouble("highStateLevel", 5.0)
                           .addDouble("lowStateLevel", 4.1));
        stage.setForceComputeSpan(false);
        feed(stage, frame);
    };
    const auto stats = [&] { return SignalStatisticsFilter::packageImpl(client.name()); };
    const auto peaks = [&] { return PeakFinderFilter::packageImpl(client.name()); };
    const auto pulses = [&] { return BilevelMeasurementsFilter::packageImpl(client.name()); };
    const auto text = [](const Poco::JSON::Object::Ptr& object) {
        std::ostringstream stream;
        object->stringify(stream);
        return stream.str();
    };
    run(TimeSignalStatisticsFilter());
    auto expected = stats();
    run(BFTimeSignalStatisticsFilter());
    EXPECT_EQ(stats()->getValue<std::string>("timeRange"), "100, 140");
    auto actual = stats();
    actual->set("timeRange", std::string());
    EXPECT_EQ(text(actual), text(expected));
    EXPECT_EQ(expected->getValue<std::string>("xMin"), "100");

    run(TimePeakFinderFilter());
    expected = peaks();
    BFTimePeakFinderFilter peakFilter;
    run(peakFilter);
    EXPECT_EQ(text(peaks()), text(expected));
    EXPECT_GT(expected->getValue<int>("numPeaks"), 0);

    run(BilevelMeasurementsFilter());
    expected = pulses();
    BFBilevelMeasurementsFilter pulseFilter;
    run(pulseFilter);
    EXPECT_EQ(text(pulses()), text(expected));
    EXPECT_EQ(expected->getValue<std::string>("posEdges"), "6");

    // A new run shows no stale figures, and an empty span does nothing.
    peakFilter.tuneImpl(client.setup());
    pulseFilter.tuneImpl(client.setup());
    BFTimeSignalStatisticsFilter().tuneImpl(client.setup());
    cacheFilter.tuneImpl(client.setup());
    feed(peakFilter, frame);
    feed(pulseFilter, frame);
    EXPECT_EQ(peaks()->getValue<int>("numPeaks"), 0);
    EXPECT_EQ(pulses()->getValue<std::string>("amplitude"), "nan");
    EXPECT_EQ(stats()->getValue<std::string>("mean"), "0");
    EXPECT_EQ(stats()->getValue<std::string>("timeRange"), "");
}

TEST(BFTriggerFilter, flushesAtTheEndOfTheSimulation) {
    TestClient client;
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
    BFTriggerFilter filter;
    filter.tuneImpl(client.setup()
                        .addLogical("triggerEnabled", true)
                        .addChar("mode", "normal")
                        .addLogical("autoLevel", false)
                        .addDouble("level", 5.5)
                        .addDouble("position", 50)
                        .addDouble("customSpan", 8));
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
    client->setSimStopTime(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(filter.needToFlushQueue(1e9));
    client->setSimStatus(wavedeck::SimStatus::Ended);
    EXPECT_TRUE(filter.needToFlushQueue(1.0));
    client->setIsDataSourceRepository(true);
    filter.tuneImpl(TestClient::tune().addChar("clientID", client.name()).addDouble("autoTimeRange", 3.0));
    EXPECT_TRUE(filter.isActive());  // a replay is triggered too
    // The span's options are read at a tune: without a sample time an automatic span is that option.
    client->setSampleTimes({0.0});
    filter.tuneImpl(TestClient::tune().addChar("clientID", client.name()).addLogical("autoSpan", true));
    EXPECT_EQ(filter.getTimeRange(0, client.board()), 3.0);
}

}  // namespace
}  // namespace dspwavedecks
