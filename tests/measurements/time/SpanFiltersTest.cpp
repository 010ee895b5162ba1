// The cache and the measurements of the displayed span as stages: what they take from lists, frames and board, and what
// they leave there.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "AxesOfSignal.h"
#include "BilevelMeasurementsFilter.h"
#include "Board.h"
#include "DisplayedSpan.h"
#include "MeasurementsDataCacheFilter.h"
#include "TimeChainRig.h"
#include "TimePeakFinderFilter.h"
#include "TimeSignalStatisticsFilter.h"

namespace dspwavedecks {
namespace {

using testsupport::feed;
using testsupport::frameOf;
using testsupport::TestClient;
using testsupport::timesFrom;

MeasurementsDataCache& cacheOf(const TestClient& client) {
    return *MeasurementsDataCacheFilter::findCache(client.board());
}

signalStatsStruct statsOf(const TestClient& client) {
    return board::read<signalStatsStruct>(client.board(), SignalStatisticsFilter::signalStats);
}

double square(double time) {
    return std::fmod(time, 10.0) < 5.0 ? 0.0 : 1.0;
}

TEST(MeasurementsDataCacheFilter, keepsTheMeasuredChannel) {
    TestClient client({2, 1});
    MeasurementsDataCacheFilter filter;
    EXPECT_TRUE(filter.isActive());
    filter.tuneImpl(client.setup().addInt("measurementChannel", 1));
    feed(filter, {0, 1, 2, /* first */ 5, 5, 5, /* second */ 7, 8, 9});
    feed(filter, {0, 1, 2, 0, 0, 0}, 1);                                  // another signal
    filter.tuneImpl(TestClient::tune().addInt("measurementChannel", 2));
    feed(filter, {3, 4, 0, 0, 0, 0});  // there is no third channel; the tune keeps what is cached
    EXPECT_EQ(cacheOf(client).getData(), std::vector<double>({7, 8, 9}));
    EXPECT_EQ(1, BaseFilter::packageImpl(client.name())->getValue<int>("channel"));
    filter.tuneImpl(TestClient::tune().addInt("measurementChannel", 0));

    filter.rollbackImpl(TestClient::list("onRollback"));  // without a time nothing happens
    EXPECT_EQ(cacheOf(client).size(), 3u);
    filter.rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", 1.0));
    EXPECT_EQ(cacheOf(client).getTime(), std::vector<double>({0, 1}));

    client->setIsDataSourceRepository(true);  // a replay is not cached, and its setup empties nothing
    feed(filter, {3, 4, 0, 0, 0, 0});
    filter.tuneImpl(client.setup());
    EXPECT_EQ(cacheOf(client).size(), 2u);
    client->setIsDataSourceRepository(false);
    client->setSimStartTime(5.0);
    filter.tuneImpl(client.setup());
    EXPECT_EQ(cacheOf(client).size(), 0u);
    feed(filter, {5, 6, 7, 0, 0, 0, 0, 0, 0});
    filter.rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", 5.0));  // to the start
    EXPECT_EQ(cacheOf(client).size(), 0u);
    EXPECT_FALSE(MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(client.name()));
    cacheOf(client).memoryLimitReached = true;
    EXPECT_TRUE(MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(client.name()));
}

TEST(MeasurementsDataCacheFilter, mapsSignalsToAxes) {
    TestClient client;
    MeasurementsDataCacheFilter filter;
    filter.tuneImpl(client.setup());
    const auto axesOf = board::read<AxesOfSignal>(client.board(), "WDSigIdToAxesId");
    EXPECT_EQ(axesOf(0), 0u);  // no axes yet
    for (const unsigned long axes : {0, 1, 2}) {
        client.board().axesTimeTable.set(axes, {});
    }
    EXPECT_EQ(axesOf(7), 2u);
    EXPECT_EQ(axesOf(1), 1u);
    EXPECT_EQ(client->getAxesIdFromSignalId(7), 2u);
}

TEST(DisplayedSpan, isMeasuredOnceAndThenFollowsTheFirstAxes) {
    struct Row {
        bool autoSpan;
        DisplayedSpanRules rules;
        double axesStart;
        double first;
    };
    // Signal 1 has 5 points 0.5 s apart and an offset of 3 s; signal 0 one of 10 s.
    const Row rows[] = {
        {true, {}, 1.0, 3.0 + 2.0 - 1.0},
        {true, {.offsetOfFirstSignal = true}, 1.0, 10.0 + 2.0 - 1.0},
        {true, {}, 5.0, 0.0},
        {true, {.offsetOfFirstSignal = true, .axesSpanForEmptyFrame = true}, 12.0, 42.0},
        {false, {}, 1.0, 7.0},
    };
    for (const Row& row : rows) {
        TestClient client({1, 1});
        client->setSampleTimes({1.0, 0.5});
        client->setOffsets({10.0, 3.0});
        client.board().axesTimeTable.set(0, {0.0, 42.0});
        client.board().axesTimeTable.set(1, {row.axesStart, 43.0});
        TimeSignalStatisticsFilter filter;
        filter.tuneImpl(client.setup().addLogical("autoSpan", row.autoSpan).addDouble("customSpan", 7.0));
        filter.setInputLength(10);
        EXPECT_EQ(row.first, displayedTimeRange(filter, 1, client.board(), row.rules));
        EXPECT_EQ(42.0, displayedTimeRange(filter, 1, client.board(), row.rules));
        filter.setForceComputeSpan(true);
        EXPECT_EQ(row.first, displayedTimeRange(filter, 1, client.board(), row.rules));
    }
}

TEST(DisplayedSpan, rangeIsCutAtTheFirstSampleThatIsNotOlder) {
    MeasurementsDataCache cache;
    EXPECT_EQ(newestRange(nullptr, 1.0), std::vector<unsigned long>({0, 0}));
    EXPECT_EQ(newestRange(&cache, 1.0), std::vector<unsigned long>({0, 0}));
    const auto frame = frameOf(timesFrom(0, 10, 1.0), {square});
    cache.addData(frame.data(), 0, 10);
    const struct {
        double span;
        unsigned long start;
    } rows[] = {{3.5, 6}, {3.0, 6}, {0.0, 9}, {9.0, 0}, {100.0, 0}, {-1.0, 0}, {std::nan(""), 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(newestRange(&cache, row.span), std::vector<unsigned long>({row.start, 10})) << row.span;
    }
    const double again[] = {9.0, 9.0, 1.0, 2.0};
    cache.addData(again, 0, 2);  // the same time several times: all of them belong to a span of 0
    EXPECT_EQ(newestRange(&cache, 0.0), std::vector<unsigned long>({9, 12}));
}

/// Cache and one measuring stage of a client with one axes that shows 4 s, fed with whole seconds.
template <class Filter>
struct Span {
    explicit Span(const std::string& enable) {
        client->setOffsets({100.0});
        client.board().axesTimeTable.set(0, {0.0, 4.0});
        testsupport::markNothing(client, 4.0);
        cacheFilter.tuneImpl(client.setup());
        filter.tuneImpl(client.setup().addLogical(enable, true));
        filter.setForceComputeSpan(false);
    }
    void feedBoth(const std::vector<double>& frame) {
        feed(cacheFilter, frame);
        feed(filter, frame);
    }
    TestClient client;
    MeasurementsDataCacheFilter cacheFilter;
    Filter filter;
};

TEST(TimeSignalStatisticsFilter, measuresTheSpanInTimesOfTheDisplay) {
    Span<TimeSignalStatisticsFilter> span("signalStatisticsEnabled");
    feed(span.filter, {0, 1});  // nothing cached yet: the record stays
    EXPECT_EQ(statsOf(span.client).mean, 0.0);
    span.feedBoth({0, 1, 2, 3, 4, /* values */ 90, -90, 1, 1, 1});
    EXPECT_EQ(statsOf(span.client).xMin, 101.0);  // the whole cache
    EXPECT_EQ(statsOf(span.client).xMax, 100.0);
    span.feedBoth({5, 6, /* values */ 6, 3});
    // From 2 s on: 1 1 1 6 3.
    EXPECT_DOUBLE_EQ(statsOf(span.client).mean, 2.4);
    EXPECT_EQ(statsOf(span.client).xMax, 105.0);
    EXPECT_EQ(statsOf(span.client).xMin, 102.0);
    EXPECT_TRUE(statsOf(span.client).timeRange.empty());
    // A position that is not computed is no time.
    span.filter.tuneImpl(TestClient::tune().addLogical("showMax", false));
    span.feedBoth({7, /* value */ 8});
    EXPECT_TRUE(std::isnan(statsOf(span.client).xMax));
    EXPECT_EQ(statsOf(span.client).xMin, 103.0);
    // A rollback before the oldest sample leaves an empty cache, and the record as it is.
    span.cacheFilter.rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", -1.0));
    feed(span.filter, {8, 8});
    EXPECT_EQ(statsOf(span.client).xMin, 103.0);
}

TEST(TimeSignalStatisticsFilter, measuresAReplayAsItsFrame) {
    Span<TimeSignalStatisticsFilter> span("signalStatisticsEnabled");
    span.client->setIsDataSourceRepository(true);
    span.feedBoth({50, 60, 70, /* values */ 2, 1, 9});
    EXPECT_EQ(cacheOf(span.client).size(), 0u);
    EXPECT_EQ(statsOf(span.client).mean, 4.0);
    EXPECT_EQ(statsOf(span.client).xMin, 160.0);
    EXPECT_EQ(statsOf(span.client).xMax, 170.0);
    span.filter.tuneImpl(TestClient::tune().addInt("measurementChannel", 3));
    feed(span.filter, {50, 60, 70, 2, 1, 9});
    EXPECT_TRUE(std::isnan(statsOf(span.client).mean));
}

TEST(TimePeakFinderFilter, tellsTimesOfTheDisplay) {
    Span<TimePeakFinderFilter> span("peakFinderEnabled");
    const auto peaks = [&] { return board::read<peakFinderStruct>(span.client.board(), PeakFinderFilter::peakFinder); };
    feed(span.filter, {0, 1});
    EXPECT_EQ(peaks().numPeaks, 0u);
    span.feedBoth({0, 1, 2, 3, /* values */ 0, 9, 0, 0});
    span.feedBoth({4, 5, 6, 7, /* values */ 0, 3, 0, 1});  // the span begins at 3 s: the peak at 1 s is out
    ASSERT_EQ(peaks().numPeaks, 1u);
    EXPECT_EQ(peaks().peaks[0].location, 105.0);
    EXPECT_EQ(peaks().peaks[0].value, 3.0);
    EXPECT_TRUE(peaks().isNewDataReady);
    span.client->setIsDataSourceRepository(true);
    span.feedBoth({50, 60, 70, /* values */ 2, 5, 1});
    EXPECT_EQ(peaks().peaks[0].location, 160.0);
}

TEST(BilevelMeasurementsFilter, measuresTheSpanAndTellsTexts) {
    Span<BilevelMeasurementsFilter> span("bilevelMeasurementsEnabled");
    span.client.board().axesTimeTable.set(0, {0.0, 35.0});
    const auto package = [&](const char* key) {
        return BilevelMeasurementsFilter::packageImpl(span.client.name())->getValue<std::string>(key);
    };
    EXPECT_EQ(BilevelMeasurementsFilter::packageImpl(span.client.name())->size(), 25u);
    EXPECT_EQ(package("amplitude"), "nan");
    feed(span.filter, {0, 1});  // nothing cached
    EXPECT_EQ(package("amplitude"), "nan");
    span.filter.tuneImpl(TestClient::tune().addLogical("autoStateLevel", false).addDouble("highStateLevel", 1.0));
    span.feedBoth(frameOf(timesFrom(0, 60, 1.0), {square}));
    EXPECT_EQ(package("amplitude"), "1");
    EXPECT_EQ(package("posEdges"), "nan");
    span.filter.tuneImpl(TestClient::tune().addLogical("showTransitions", true).addLogical("showCycles", true));
    feed(span.filter, frameOf({60}, {square}));
    // From 24 to 59: rising at 24.5, 34.5, 44.5 and 54.5, falling in between.
    EXPECT_EQ(package("posEdges"), "4");
    EXPECT_EQ(package("negEdges"), "3");
    EXPECT_EQ(package("period"), "10");
    EXPECT_EQ(package("posDutyCycle"), "50");
    EXPECT_NEAR(std::stod(package("riseTime")), 0.8, 1e-12);
    span.client->setIsDataSourceRepository(true);
    feed(span.filter, frameOf(timesFrom(0, 8, 1.0), {square}));
    EXPECT_EQ(package("posEdges"), "1");
}

}  // namespace
}  // namespace dspwavedecks
