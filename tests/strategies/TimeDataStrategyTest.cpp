#include "TimeDataStrategy.h"

#include "MagPhaseFilter.h"
#include "MeasurementsDataCacheFilter.h"
#include "StrategyTestSupport.h"
#include "wavedeck/DataStorageFilterUtils.h"
#include "wavedeck/WaveDeckStatics.h"

namespace {

void setBoard(const TestClient& client, std::vector<bool> marks, Values timeRange) {
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, marks);
    client.board().addCustomSetting(MagPhaseFilter::timeRange, timeRange);
}

TEST(TimeDataStrategy, choosesTheNewestPoints) {
    const struct {
        int points;
        Values timeRange;
        double sampleTime;
        bool replay;
        int start;
    } rows[] = {
        {20000, {}, 0.0001, false, 4640},   {20000, {1.0}, 0.0001, false, 9999},  // 10000 intervals and a point
        {20000, {10}, 0.0001, false, 4639},                                       // one point above the other limit
        {20000, {10}, 0.0001, true, 0},                                           // a replay goes out whole
        {20000, {}, 0.0001, true, 0},       {10001, {1.0}, 0.0001, false, 0},
        {10002, {1.0}, 0.0001, false, 1},   {20000, {1e300}, 1e-300, false, 4639},  // more intervals than any integer
        {20000, {0.0}, 0.0, false, 4639},                                           // no number at all
        {20000, {-5.0}, 1.0, false, 20000},                                         // nothing
        {15360, {}, 1.0, false, 0},         {0, {1.0}, 1.0, false, 0},
    };
    for (const auto& row : rows) {
        TestClient client;
        client->setSampleTimes({row.sampleTime});
        client->setIsDataSourceRepository(row.replay);
        setBoard(client, {false}, row.timeRange);
        TimeDataStrategy strategy;
        strategy.setClientID(client.name());
        strategy.resetDataStartAndEndIdx(row.points);
        strategy.computeDataStartAndEndIdx({}, 0, row.points, false, client.board());
        EXPECT_EQ(row.start, strategy.getDataStartIdx()) << row.points << ", " << row.sampleTime;
        EXPECT_EQ(row.points, strategy.getDataEndIdx());
    }
}

TEST(TimeDataStrategy, makesTheMessage) {
    TestClient client({2, 1, 1});
    client->setOffsets({0.25, 0, 0});
    client->setSampleTimes({1, 1, 1});
    setBoard(client, {true, false}, {2, 100});
    TimeDataStrategy strategy;
    const std::vector<Values> data = {
        {0, 1, 2, 3, /* magnitudes */ 9, 1, nan, 3, /* phases */ 0, infinity, -90, 45}, {}, {0, 1, nan, infinity}};
    const auto message = update(strategy, client, data, {"a", "b", "c"});
    EXPECT_EQ(3u, message->size());
    const std::string signals = text(message, "signals");
    // In the last signal no mark counts as none, no range as no range.
    EXPECT_EQ(signals,
              R"([{"channel":[{"NaNIdx":[1],"data":[1,0,3],"dbid":"db0","id":"a","subplotNum":0,"time":[1,2,3],)"
              R"("timeOffset":0.25},{"NaNIdx":[0],"data":[0,-90,45],"dbid":"db1","id":"a","subplotNum":1,)"
              R"("time":[1,2,3],"timeOffset":0.25}],"dataMax":"[3,45]","dataMin":"[1,-90]","id":"a","numChannels":2},)"
              R"(null,{"channel":[{"NaNIdx":[0,1],"data":[0,0],"dbid":"db0","id":"c","subplotNum":0,"time":[0,1],)"
              R"("timeOffset":0}],"dataMax":"[-inf,-inf]","dataMin":"[inf,inf]","id":"c","numChannels":1}])");
    const auto channels = at(message, "signals", 0)->getArray("channel");
    EXPECT_TRUE(channels->getObject(0)->getArray("data")->get(1).isInteger());
    EXPECT_EQ(channels->getObject(0)->getArray("time").get(), channels->getObject(1)->getArray("time").get());
    EXPECT_EQ(0u, message->getObject("measurements")->size());

    EXPECT_EQ(0u, update(strategy, client, data, {"", "", ""})->getArray("signals")->size());
    EXPECT_EQ(signals, text(message, "signals"));  // not written over
    client.numChannels = {11, 1, 1};
    EXPECT_NE(text(update(strategy, client, {Values(24)}), "signals").find("\"db10\""), std::string::npos);
}

TEST(TimeDataStrategy, attachesWhatIsActive) {
    TestClient client;
    setBoard(client, {false}, {});
    client.board().addCustomSetting("dataStorageFilterUtils", wavedeck::DataStorageFilterUtils{{1.5, 2}, true, false});
    TimeDataStrategy strategy;
    EXPECT_FALSE(update(strategy, client, {{0, 1}})->has("dataFilterObj"));
    activate(client, "wavedeck_datastorage_filter");
    activate(client, "time_signal_statistics_filter");
    const auto message = update(strategy, client, {{0, 1}});
    EXPECT_EQ(text(message, "dataFilterObj"),
              R"({"forceLimitBuffer":true,"startTimeInBuffer":[1.5,2],"startTimeInBufferChanged":false})");
    EXPECT_EQ("0", message->getObject("measurements")->getObject("stats")->getValue<std::string>("mean"));
    // The cache of a simulation may meet its limit.
    MeasurementsDataCache cache;
    cache.memoryLimitReached = true;
    client.board().addCustomSetting(MeasurementsDataCacheFilter::measurementsDataCache, cache);
    EXPECT_FALSE(message->getObject("measurements")->has("isMaximumCacheMemoryUsed"));
    activate(client, "bf_wavedeck_measurements_data_cache_filter");
    EXPECT_TRUE(
        update(strategy, client, {{0, 1}})->getObject("measurements")->getValue<bool>("isMaximumCacheMemoryUsed"));
}

TEST(TimeDataStrategy, countsItsUpdates) {
    TestClient client;
    setBoard(client, {false}, {});
    TimeDataStrategy strategy;
    EXPECT_FALSE(update(strategy, client, {{0, 1}})->has("performance"));
    wavedeck::WaveDeckStatics::setEnableWaveDecksDiagnostics(true);
    const auto rate = [&] {
        return update(strategy, client, {{0, 1}})->getObject("performance")->getValue<double>("framesPerSecond");
    };
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(1.0, rate());  // whatever the true rate
    }
    EXPECT_GT(rate(), 100.0);
    wavedeck::WaveDeckStatics::setEnableWaveDecksDiagnostics(false);
}

}  // namespace
