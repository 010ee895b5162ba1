// The cache and the measurements of the displayed span as stages: what they take from lists, frames and board, and what
// they leave there.

#include "BilevelMeasurementsFilter.h"
#include "Board.h"
#include "DisplayedSpan.h"
#include "MeasurementsDataCacheFilter.h"
#include "Test.h"
#include "TimeChainRig.h"
#include "TimePeakFinderFilter.h"
#include "TimeSignalStatisticsFilter.h"

namespace {

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
    const auto expectTimes = [&](const Values& times) { EXPECT_EQ(cacheOf(client).getTime(), times); };
    const auto rollback = [&](double time) {
        filter.rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", time));
    };
    filter.tuneImpl(client.setup("measurementChannel=1"));
    feed(filter, {0, 1, 2, /* first */ 5, 5, 5, /* second */ 7, 8, 9});
    feed(filter, {0, 1, 2, 0, 0, 0}, 1);  // another signal
    EXPECT_EQ(cacheOf(client).getData(), Values({7, 8, 9}));
    EXPECT_EQ(1, BaseFilter::packageImpl(client.name())->getValue<int>("channel"));
    filter.tuneImpl(TestClient::tune("measurementChannel=2"));
    feed(filter, {3, 4, 0, 0, 0, 0});                     // there is no third channel
    filter.rollbackImpl(TestClient::list("onRollback"));  // without a time nothing happens
    expectTimes({0, 1, 2});
    rollback(1.0);
    expectTimes({0, 1});
    client->setIsDataSourceRepository(true);  // a replay is not cached, and its setup empties nothing
    filter.tuneImpl(client.setup("measurementChannel=0"));
    feed(filter, {3, 4, 0, 0, 0, 0});
    expectTimes({0, 1});
    client->setIsDataSourceRepository(false);
    client->setSimStartTime(5.0);
    filter.tuneImpl(client.setup());
    expectTimes({});
    feed(filter, {5, 6, 7, 0, 0, 0, 0, 0, 0});
    rollback(5.0);  // to the start
    expectTimes({});
}

TEST(MeasurementsDataCacheFilter, mapsSignalsToAxes) {
    TestClient client;
    MeasurementsDataCacheFilter().tuneImpl(client.setup());
    EXPECT_EQ(client->getAxesIdFromSignalId(0), 0u);  // no axes yet
    for (const unsigned long axes : {0, 1, 2}) {
        client.board().axesTimeTable.set(axes, {});
    }
    EXPECT_EQ(client->getAxesIdFromSignalId(7), 2u);
    EXPECT_EQ(client->getAxesIdFromSignalId(1), 1u);
}

TEST(DisplayedSpan, isMeasuredOnceAndThenFollowsTheFirstAxes) {
    // Signal 1 has 5 points 0.5 s apart and an offset of 3 s; signal 0 one of 10 s.
    const struct {
        bool autoSpan;
        DisplayedSpanRules rules;
        double axesStart, first;
    } rows[] = {{true, {}, 1.0, 3.0 + 2.0 - 1.0},
                {true, {.offsetOfFirstSignal = true}, 1.0, 10.0 + 2.0 - 1.0},
                {true, {}, 5.0, 0.0},
                {true, {.offsetOfFirstSignal = true, .axesSpanForEmptyFrame = true}, 12.0, 42.0},
                {false, {}, 1.0, 7.0}};
    for (const auto& row : rows) {
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
    }
}

TEST(DisplayedSpan, rangeIsCutAtTheFirstSampleThatIsNotOlder) {
    MeasurementsDataCache cache;
    EXPECT_EQ(newestRange(nullptr, 1.0), std::vector<unsigned long>({0, 0}));
    EXPECT_EQ(newestRange(&cache, 1.0), std::vector<unsigned long>({0, 0}));
    const Values frame(2 * 12, 9.0);
    cache.addData(frameOf(ramp(0, 10), {square}).data(), 0, 10);
    cache.addData(frame.data(), 0, 2);  // the newest time three times over
    const struct {
        double span;
        unsigned long start;
    } rows[] = {{3.5, 6}, {3.0, 6}, {0.0, 9}, {9.0, 0}, {100.0, 0}, {-1.0, 0}, {nan, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(newestRange(&cache, row.span), std::vector<unsigned long>({row.start, 12})) << row.span;
    }
}

/// Cache and one measuring stage of a client whose axes show 4 s at an offset of 100 s, fed with whole seconds.
template <class Filter>
struct Span {
    Span() {
        client->setOffsets({100.0});
        client.board().axesTimeTable.set(0, {0.0, 4.0});
        testsupport::markNothing(client, 4.0);
        cacheFilter.tuneImpl(client.setup());
        filter.tuneImpl(client.setup());
        filter.setForceComputeSpan(false);
        feed(filter, {0, 1});  // nothing cached yet: the record stays
    }
    void feedBoth(const Values& frame) {
        feed(cacheFilter, frame);
        feed(filter, frame);
    }
    TestClient client;
    MeasurementsDataCacheFilter cacheFilter;
    Filter filter;
};

TEST(TimeSignalStatisticsFilter, measuresTheSpanInTimesOfTheDisplay) {
    Span<TimeSignalStatisticsFilter> span;
    const auto expectPositions = [&](double xMin, double xMax) {
        expectValues({statsOf(span.client).xMin, statsOf(span.client).xMax}, {xMin, xMax});
    };
    expectPositions(0.0, 0.0);
    span.feedBoth({0, 1, 2, 3, 4, /* values */ 90, -90, 1, 1, 1});
    expectPositions(101.0, 100.0);  // the whole cache
    span.feedBoth({5, 6, /* values */ 6, 3});
    expectPositions(102.0, 105.0);  // from 2 s on: 1 1 1 6 3
    EXPECT_DOUBLE_EQ(statsOf(span.client).mean, 2.4);
    EXPECT_TRUE(statsOf(span.client).timeRange.empty());
    span.filter.tuneImpl(TestClient::tune("showMax=false"));
    span.feedBoth({7, /* value */ 8});
    expectPositions(103.0, nan);  // a position that is not computed is no time
    // A rollback before the oldest sample leaves an empty cache, and the record as it is.
    span.cacheFilter.rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", -1.0));
    feed(span.filter, {8, 8});
    expectPositions(103.0, nan);
    // A replay is measured as its frame, and the cache is left alone.
    span.client->setIsDataSourceRepository(true);
    span.filter.tuneImpl(TestClient::tune("showMax=true"));
    span.feedBoth({50, 60, 70, /* values */ 2, 1, 9});
    expectPositions(160.0, 170.0);
    EXPECT_EQ(cacheOf(span.client).size(), 0u);
    span.filter.tuneImpl(TestClient::tune("measurementChannel=3"));
    feed(span.filter, {50, 60, 70, 2, 1, 9});
    EXPECT_TRUE(std::isnan(statsOf(span.client).mean));
}

TEST(TimePeakFinderFilter, tellsTimesOfTheDisplay) {
    Span<TimePeakFinderFilter> span;
    const auto peaks = [&] { return board::read<peakFinderStruct>(span.client.board(), PeakFinderFilter::peakFinder); };
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
    Span<BilevelMeasurementsFilter> span;
    span.client.board().axesTimeTable.set(0, {0.0, 35.0});
    const auto package = [&](const char* key) {
        return BilevelMeasurementsFilter::packageImpl(span.client.name())->getValue<std::string>(key);
    };
    EXPECT_EQ(BilevelMeasurementsFilter::packageImpl(span.client.name())->size(), 25u);
    EXPECT_EQ(package("amplitude"), "nan");
    span.filter.tuneImpl(TestClient::tune("autoStateLevel=false highStateLevel=1.0"));
    span.feedBoth(frameOf(ramp(0, 60), {square}));
    EXPECT_EQ(package("amplitude"), "1");
    EXPECT_EQ(package("posEdges"), "nan");
    span.filter.tuneImpl(TestClient::tune("showTransitions=true showCycles=true"));
    feed(span.filter, frameOf({60}, {square}));
    // From 24 to 59: rising at 24.5, 34.5, 44.5 and 54.5, falling in between.
    EXPECT_EQ(package("posEdges") + " " + package("negEdges") + " " + package("period"), "4 3 10");
    EXPECT_EQ(package("posDutyCycle"), "50");
    EXPECT_NEAR(std::stod(package("riseTime")), 0.8, 1e-12);
    span.client->setIsDataSourceRepository(true);
    feed(span.filter, frameOf(ramp(0, 8), {square}));
    EXPECT_EQ(package("posEdges"), "1");
}

}  // namespace
