#include "SignalStatisticsFilter.h"

#include "Board.h"
#include "MagPhaseFilter.h"
#include "PackageText.h"
#include "Test.h"
#include "TestClient.h"

namespace {

signalStatsStruct read(const TestClient& client) {
    return board::read<signalStatsStruct>(client.board(), SignalStatisticsFilter::signalStats);
}

TEST(SignalStatisticsFilter, measuresTheChosenChannel) {
    TestClient client({2, 1});
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false, true});
    SignalStatisticsFilter filter;
    filter.tuneImpl(client.setup("measurementChannel=1"));
    EXPECT_FALSE(filter.isActive());
    filter.tuneImpl(TestClient::tune("signalStatisticsEnabled=true"));
    EXPECT_TRUE(filter.isActive());
    const Values frame = {0, 1, 2, /* first */ 9, 9, 9, /* second */ 1, 5, 3};
    EXPECT_TRUE(feed(filter, frame).empty());
    EXPECT_EQ(3.0, read(client).mean);
    EXPECT_EQ(1.0, read(client).xMax);
    EXPECT_EQ(5.0, read(client).yMax);
    EXPECT_EQ(1, BaseFilter::packageImpl(client.name())->getValue<int>("channel"));
    feed(filter, {0, 7, 7, 7}, 1);  // not the measured signal
    EXPECT_EQ(3.0, read(client).mean);

    // The other signal holds magnitude and phase: two channels where the host counts one.
    filter.tuneImpl(TestClient::tune("measurementSignal=1"));
    feed(filter, {0, 1, /* magnitude */ 4, 8, /* phase */ 180, 90}, 1);
    EXPECT_EQ(135.0, read(client).mean);
    filter.tuneImpl(TestClient::tune("measurementChannel=2"));
    feed(filter, {0, 1, 4, 8, 180, 90}, 1);  // there is no third
    EXPECT_TRUE(std::isnan(read(client).mean));
}

TEST(SignalStatisticsFilter, writesTextsForTheClient) {
    TestClient client;
    signalStatsStruct stats;
    stats.xMin = 3;
    stats.yMin = -0.1;
    stats.mean = std::copysign(nan, 1.0);
    stats.rms = infinity;
    stats.varianceValid = false;
    stats.timeRange = {0.5, 2};
    client.board().addCustomSetting(SignalStatisticsFilter::signalStats, stats);
    const auto text = [&] { return textOf(SignalStatisticsFilter::packageImpl(client.name())); };
    // Computed figures read nan, those of a masked group NaN.
    EXPECT_EQ(text(), R"({"mean":"nan","meanSquare":"0","median":"0","peakToPeak":"0","rms":"inf",)"
                      R"("standardDeviation":"NaN","timeRange":"0.5, 2","variance":"NaN","xMax":"0","xMin":"3",)"
                      R"("yMax":"0","yMin":"-0.10000000000000001"})");
    for (const Values& range : {Values{1}, {1, nan}, {stats.rms, 1}}) {
        stats.timeRange = range;
        stats.minMaxValid = false;
        stats.meanValid = false;
        board::write(client.board(), SignalStatisticsFilter::signalStats, stats);
        EXPECT_EQ(text(), R"({"mean":"NaN","meanSquare":"NaN","median":"NaN","peakToPeak":"NaN","rms":"NaN",)"
                          R"("standardDeviation":"NaN","timeRange":"","variance":"NaN","xMax":"NaN","xMin":"NaN",)"
                          R"("yMax":"NaN","yMin":"NaN"})");
    }
}

}  // namespace
