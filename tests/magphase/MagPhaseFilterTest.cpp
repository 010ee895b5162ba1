#include "MagPhaseFilter.h"

#include "Board.h"
#include "Test.h"
#include "TestClient.h"

namespace {

TEST(MagPhaseFilter, replacesMarkedSignals) {
    TestClient client({2, 2, 1});
    client->setIsComplex({0, 1, 0});
    MagPhaseFilter filter;
    EXPECT_FALSE(filter.isActive());
    filter.tuneImpl(client.setup());
    EXPECT_FALSE(filter.isActive());
    filter.tuneImpl(TestClient::tune().addLogicals("magPhaseData", {true, true}));
    EXPECT_TRUE(filter.isActive());
    EXPECT_EQ((Values{2, 1, 1}), client->channelSizeFactors);

    const Values real = feed(filter, Values(30, -2.0), 0);
    ASSERT_EQ(50u, real.size());
    EXPECT_EQ(-2.0, real[9]);
    EXPECT_EQ(2.0, real[29]);
    EXPECT_EQ(180.0, real[30]);
    const Values complex = feed(filter, {0, 1, 0, 3, 1, 4}, 1);
    EXPECT_EQ((Values{0, 1, 1, 5, 90}), Values(complex.begin(), complex.begin() + 5));
    EXPECT_EQ(6u, complex.size());
    EXPECT_EQ((Values{0, -2}), feed(filter, {0, -2}, 2));  // not marked
    filter.tuneImpl(TestClient::tune().addLogicals("magPhaseData", {false, false}));
    EXPECT_EQ((Values{0, -2, 1}), feed(filter, {0, -2, 1}, 0));
    EXPECT_FALSE(filter.isActive());
    EXPECT_EQ((Values{1, 1, 1}), client->channelSizeFactors);
}

TEST(MagPhaseFilter, publishesMarksAndSpans) {
    TestClient client;
    client.board().addCustomSetting(MagPhaseFilter::customSpan, 7.0);
    MagPhaseFilter filter;
    filter.tuneImpl(TestClient::list("setup").addChar("clientID", client.name()).addInts("numChannels", {1}));
    EXPECT_EQ(7.0, board::read<double>(client.board(), MagPhaseFilter::customSpan));  // was there
    EXPECT_EQ((std::vector<std::string>{"autoSpan", "customSpan", "magPhaseData", "timeRange"}), client.board().keys());
    filter.tuneImpl(TestClient::tune("autoSpan=true customSpan=2.5 timeRange=5,6").addLogicals("magPhaseData", {true}));
    EXPECT_TRUE(board::read<bool>(client.board(), MagPhaseFilter::autoSpan));
    EXPECT_TRUE(filter.getAutoSpan());
    EXPECT_EQ(2.5, filter.getCustomSpanSeconds());
    EXPECT_EQ(2.5, board::read<double>(client.board(), MagPhaseFilter::customSpan));
    EXPECT_EQ(std::vector<bool>{true}, board::read<std::vector<bool>>(client.board(), MagPhaseFilter::magPhaseData));
    EXPECT_EQ((Values{5, 6}), board::read<Values>(client.board(), MagPhaseFilter::timeRange));
}

}  // namespace
