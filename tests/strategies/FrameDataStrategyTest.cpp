#include "FrameDataStrategy.h"

#include "MagPhaseFilter.h"
#include "StrategyTestSupport.h"

namespace {

TEST(FrameDataStrategy, makesTheMessage) {
    TestClient client({1, 1, 2});
    client->setOffsets({10, 0, 0});
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false, false, true});
    FrameDataStrategy strategy;
    const auto message = update(strategy, client, {{0, 1, 2, 5, nan, 4}, {}, {0, 1, 2, 3, 4, 5, 7, 8, 9}});
    EXPECT_EQ(3u, message->size());
    EXPECT_TRUE(message->getArray("signals")->isNull(1));
    const auto signal = at(message, "signals", 0);
    const auto channel = at(signal, "channel", 0);
    EXPECT_EQ("[10,11,12]", text(channel, "sample"));
    EXPECT_EQ(10.0, channel->getValue<double>("offset"));
    EXPECT_EQ("[5,0,4]", text(channel, "data"));
    EXPECT_FALSE(channel->getArray("data")->get(1).isInteger());
    EXPECT_EQ("[1]", text(channel, "NaNIdx"));
    EXPECT_EQ(7u, channel->size());
    EXPECT_EQ(5u, signal->size());
    EXPECT_EQ("[4,inf]", signal->getValue<std::string>("dataMin"));
    EXPECT_EQ("[5,-inf]", signal->getValue<std::string>("dataMax"));
    const auto marked = at(message, "signals", 2);
    EXPECT_EQ("[3,5]", marked->getValue<std::string>("dataMin"));  // the phases begin on the last magnitude
    EXPECT_EQ("[5,9]", marked->getValue<std::string>("dataMax"));
    EXPECT_EQ(1, at(marked, "channel", 1)->getValue<int>("subplotNum"));
}

TEST(FrameDataStrategy, searchesItsLimitsByComparison) {
    const struct {
        Values buffer;
        int channels;
        bool marked;
        std::string smallest, largest;
    } rows[] = {
        {{0, 0, nan, 3}, 1, false, "[inf,inf]", "[-inf,-inf]"},  // a NaN at the head hides the rest
        {{0, 0, 3, nan}, 1, false, "[3,inf]", "[3,-inf]"},
        {{0, 0, 3, infinity}, 1, false, "[3,inf]", "[-inf,-inf]"},  // no finite largest
        {{1, 2}, 0, false, "[inf,inf]", "[-inf,-inf]"},             // no channel
        {{1, 2}, 0, true, "[inf,2]", "[-inf,2]"},
        {{1}, 4, true, "[1,1]", "[1,1]"},  // too short for one point a block
        {{1, 2, 3}, -1, true, "[1,1]", "[3,3]"},
        {{0, 5, 6, 7}, 3, true, "[5,5]", "[6,7]"},  // an odd channel count
    };
    for (const auto& row : rows) {
        TestClient client({row.channels});
        client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{row.marked});
        FrameDataStrategy strategy;
        const auto signal = at(update(strategy, client, {row.buffer}), "signals", 0);
        EXPECT_EQ(row.smallest, signal->getValue<std::string>("dataMin")) << row.channels;
        EXPECT_EQ(row.largest, signal->getValue<std::string>("dataMax")) << row.channels;
    }
}

TEST(FrameDataStrategy, sendsTheWholeFrameAndItsMeasurements) {
    TestClient client;
    FrameDataStrategy strategy;  // no marks on the board count as none
    testsupport::activate(client, "signal_statistics_filter");
    testsupport::activate(client, "peak_finder_filter");
    const auto message = update(strategy, client, {Values(200000, 1.0)});
    EXPECT_EQ(100000u, at(at(message, "signals", 0), "channel", 0)->getArray("data")->size());
    EXPECT_TRUE(message->getObject("measurements")->has("stats"));
    EXPECT_TRUE(message->getObject("measurements")->has("peaks"));
}

}  // namespace
