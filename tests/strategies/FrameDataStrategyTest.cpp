// Frames, and responses, which are frames of magnitudes and phases.

#include "FrameDataStrategy.h"

#include "MagPhaseFilter.h"
#include "MagPhaseResponseDataStrategy.h"
#include "StrategyTestSupport.h"

namespace {

TEST(FrameDataStrategy, makesTheMessage) {
    TestClient client({1, 1, 2});
    client->setOffsets({10, 0, 0});
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false, false, true});
    FrameDataStrategy strategy;
    const auto message = update(strategy, client, {{0, 1, 2, 5, nan, 4}, {}, {0, 1, 2, 3, 4, 5, 7, 8, 9}});
    EXPECT_EQ(3u, message->size());
    EXPECT_EQ(text(message, "signals"),
              R"([{"channel":[{"NaNIdx":[1],"data":[5,0,4],"dbid":"db0","id":"id","offset":10,"sample":[10,11,12],)"
              R"("subplotNum":0}],"dataMax":"[5,-inf]","dataMin":"[4,inf]","id":"id","numChannels":1},null,)"
              R"({"channel":[{"NaNIdx":[],"data":[3,4,5],"dbid":"db0","id":"id","offset":0,"sample":[0,1,2],)"
              R"("subplotNum":0},{"NaNIdx":[],"data":[7,8,9],"dbid":"db1","id":"id","offset":0,"sample":[0,1,2],)"
              // the phases begin on the last magnitude
              R"("subplotNum":1}],"dataMax":"[5,9]","dataMin":"[3,5]","id":"id","numChannels":2}])");
    EXPECT_FALSE(at(at(message, "signals", 0), "channel", 0)->getArray("data")->get(1).isInteger());
}

TEST(MagPhaseResponseDataStrategy, sendsMagnitudeAndPhaseOfRealAndComplexSignals) {
    TestClient client({1, 2});
    client->setIsComplex({0, 1});
    MagPhaseResponseDataStrategy strategy;
    const Values response{0, 1, 2, -3, -40, -9, 90, 0, -90};
    const auto message = update(strategy, client, {response, response});
    const auto real = at(message, "signals", 0);
    EXPECT_EQ(text(real, "channel"),
              R"([{"NaNIdx":[],"data":[-3,-40,-9],"dbid":"db0","id":"id","offset":0,"sample":[0,1,2],"subplotNum":0},)"
              R"({"NaNIdx":[],"data":[90,0,-90],"dbid":"db1","id":"id","offset":0,"sample":[0,1,2],"subplotNum":1}])");
    EXPECT_EQ(real->getValue<int>("numChannels"), 2);
    EXPECT_EQ(text(at(message, "signals", 1), "channel"), text(real, "channel"));
}

TEST(FrameDataStrategy, searchesItsLimitsByComparison) {
    FrameDataStrategy frame;
    MagPhaseResponseDataStrategy response;
    const struct {
        FrameDataStrategy& strategy;
        Values buffer;
        int channels;
        bool isMarked;  // as magnitudes and phases; for a response as complex
        std::string smallest, largest;
    } rows[] = {
        {frame, {0, 0, nan, 3}, 1, false, "[inf,inf]", "[-inf,-inf]"},  // a NaN at the head hides the rest
        {frame, {0, 0, 3, nan}, 1, false, "[3,inf]", "[3,-inf]"},
        {frame, {0, 0, 3, infinity}, 1, false, "[3,inf]", "[-inf,-inf]"},  // no finite largest
        {frame, {1, 2}, 0, false, "[inf,inf]", "[-inf,-inf]"},             // no channel
        {frame, {1, 2}, 0, true, "[inf,2]", "[-inf,2]"},
        {frame, {1}, 4, true, "[1,1]", "[1,1]"},  // too short for one point a block
        {frame, {1, 2, 3}, -1, true, "[1,1]", "[3,3]"},
        {frame, {0, 5, 6, 7}, 3, true, "[5,5]", "[6,7]"},     // an odd channel count, of which a response counts
        {response, {0, 5, 6, 7}, 3, true, "[5,6]", "[5,7]"},  // one more as magnitudes
        {response, {0, 1, -3, -400, 90, -90}, 1, false, "[-400,-400]", "[-3,90]"},
        {response, {1, 2}, 0, false, "[inf,2]", "[-inf,2]"},
        {response, {1, 2, 3}, -1, true, "[1,1]", "[3,3]"},
    };
    for (const auto& row : rows) {
        TestClient client({row.channels});
        client->setIsComplex({row.isMarked ? 1 : 0});
        client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{row.isMarked});
        const auto signal = signalOf(row.strategy, client, row.buffer);
        EXPECT_EQ(row.smallest, signal->getValue<std::string>("dataMin")) << row.channels;
        EXPECT_EQ(row.largest, signal->getValue<std::string>("dataMax")) << row.channels;
    }
}

TEST(FrameDataStrategy, sendsTheWholeFrameAndItsMeasurements) {
    TestClient client;
    FrameDataStrategy frame;  // no marks on the board count as none
    MagPhaseResponseDataStrategy response;
    activate(client, "signal_statistics_filter");
    EXPECT_EQ(0u, update(response, client, {{0, 1, 2}})->getObject("measurements")->size()) << "no statistics";
    activate(client, "peak_finder_filter");
    const auto message = update(frame, client, {Values(200000, 1.0)});
    EXPECT_EQ(100000u, at(at(message, "signals", 0), "channel", 0)->getArray("data")->size());
    EXPECT_TRUE(message->getObject("measurements")->has("stats"));
    for (FrameDataStrategy* strategy : {&frame, static_cast<FrameDataStrategy*>(&response)}) {
        EXPECT_TRUE(update(*strategy, client, {{0, 1, 2}})->getObject("measurements")->has("peaks"));
    }
}

}  // namespace
