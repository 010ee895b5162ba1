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
    for (unsigned index = 0; index < 2; ++index) {
        const auto signal = at(message, "signals", index);
        EXPECT_EQ(signal->getValue<int>("numChannels"), 2);
        EXPECT_EQ(signal->getArray("channel")->size(), 2U);
        EXPECT_EQ(signal->getValue<std::string>("dataMin"), "[-40,-90]");
        EXPECT_EQ(signal->getValue<std::string>("dataMax"), "[-3,90]");
        const auto magnitude = at(signal, "channel", 0);
        const auto phase = at(signal, "channel", 1);
        EXPECT_EQ(text(magnitude, "sample"), index == 0 ? "[100,101,102]" : "[0,1,2]");
        EXPECT_EQ(text(magnitude, "data"), "[-3,-40,-9]");
        EXPECT_EQ(text(phase, "data"), "[90,0,-90]");
        EXPECT_EQ(magnitude->getValue<int>("subplotNum"), 0);
        EXPECT_EQ(phase->getValue<int>("subplotNum"), 1);
        EXPECT_EQ(magnitude->getValue<std::string>("dbid"), "db0");
        EXPECT_EQ(phase->getValue<std::string>("dbid"), "db1");
        EXPECT_EQ(phase->getValue<std::string>("id"), index == 0 ? "low" : "high");
    }
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
