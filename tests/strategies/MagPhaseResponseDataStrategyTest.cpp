#include "MagPhaseResponseDataStrategy.h"

#include "StrategyTestSupport.h"

namespace {

TEST(MagPhaseResponseDataStrategy, SendsMagnitudeAndPhaseOfRealAndComplexSignals) {
    TestClient client({1, 2});
    client->setIsComplex({0, 1});
    client->setOffsets({100, 0});
    MagPhaseResponseDataStrategy strategy;
    const Values response{0, 1, 2, -3, -40, -9, 90, 0, -90};
    const auto message = update(strategy, client, {response, response}, {"low", "high"});
    EXPECT_EQ(message->size(), 3U);
    EXPECT_EQ(message->getObject("measurements")->size(), 0U);
    EXPECT_TRUE(message->has("simulation"));
    EXPECT_EQ(text(message, "signals"),
              R"([{"channel":[{"NaNIdx":[],"data":[-3,-40,-9],"dbid":"db0","id":"low","offset":100,)"
              R"("sample":[100,101,102],"subplotNum":0},{"NaNIdx":[],"data":[90,0,-90],"dbid":"db1","id":"low",)"
              R"("offset":100,"sample":[100,101,102],"subplotNum":1}],"dataMax":"[-3,90]","dataMin":"[-40,-90]",)"
              R"("id":"low","numChannels":2},{"channel":[{"NaNIdx":[],"data":[-3,-40,-9],"dbid":"db0","id":"high",)"
              R"("offset":0,"sample":[0,1,2],"subplotNum":0},{"NaNIdx":[],"data":[90,0,-90],"dbid":"db1","id":"high",)"
              R"("offset":0,"sample":[0,1,2],"subplotNum":1}],"dataMax":"[-3,90]","dataMin":"[-40,-90]","id":"high",)"
              R"("numChannels":2}])");
}

/// The stretch of the phases begins one point early, and an odd count of channels counts one more as magnitudes.
TEST(MagPhaseResponseDataStrategy, FindsItsLimitsAsTold) {
    const struct {
        Values buffer;
        int channels;
        bool isComplex;
        std::string smallest, largest;
    } rows[] = {
        {{0, 1, -3, -400, 90, -90}, 1, false, "[-400,-400]", "[-3,90]"},
        {{0, 5, 6, 7}, 3, true, "[5,6]", "[5,7]"},
        {{1, 2}, 0, false, "[inf,2]", "[-inf,2]"},
        {{1, 2, 3}, -1, true, "[1,1]", "[3,3]"},
    };
    for (const auto& row : rows) {
        TestClient client({row.channels});
        client->setIsComplex({row.isComplex ? 1 : 0});
        MagPhaseResponseDataStrategy strategy;
        const auto signal = at(update(strategy, client, {row.buffer}), "signals", 0);
        EXPECT_EQ(signal->getValue<std::string>("dataMin"), row.smallest) << row.channels;
        EXPECT_EQ(signal->getValue<std::string>("dataMax"), row.largest) << row.channels;
    }
}

TEST(MagPhaseResponseDataStrategy, AttachesPeaksButNoStatistics) {
    TestClient client;
    MagPhaseResponseDataStrategy strategy;
    testsupport::activate(client, "signal_statistics_filter");
    EXPECT_EQ(update(strategy, client, {{0, 1, 2}})->getObject("measurements")->size(), 0U);
    testsupport::activate(client, "peak_finder_filter");
    const auto measurements = update(strategy, client, {{0, 1, 2}})->getObject("measurements");
    EXPECT_EQ(measurements->size(), 1U);
    EXPECT_TRUE(measurements->has("peaks"));
}

}  // namespace
