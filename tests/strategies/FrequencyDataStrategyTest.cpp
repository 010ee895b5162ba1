#include "FrequencyDataStrategy.h"

#include "Board.h"
#include "PhaseNoiseFilter.h"
#include "SpectrumEstimatorFilter.h"
#include "SpectrumThinnerFilter.h"
#include "StrategyTestSupport.h"
#include "phaseNoiseStruct.h"

namespace {

TEST(FrequencyDataStrategy, sendsSpectra) {
    TestClient client({2, 1, 1});
    auto& record = publish(client, 0);
    FrequencyDataStrategy strategy;
    const auto early = update(strategy, client, {{1, 2}});
    EXPECT_EQ(2u, early->size()) << "before there is a spectrum";
    EXPECT_TRUE(early->has("spectrum") && early->has("simulation"));
    record.spectrumLength = 3;
    record.frequencyOffset = {100, 200, 300};
    const auto message = update(strategy, client, {{0, 10, 20, 5, nan, -3, 7, 8, 9}, {}, {0, 10, 20, -infinity, 1, 2}});
    EXPECT_EQ(4u, message->size());
    // The limits are those of the raw values; the list of offsets has no fourth.
    EXPECT_EQ(text(message, "signals"),
              R"([{"channel":[{"NaNIdx":[1],"data":[5,0,-3],"dbid":"db0","frequency":[0,10,20],"frequencyOffset":100,)"
              R"("id":"id","subplotNum":0},{"NaNIdx":[],"data":[7,8,9],"dbid":"db1","frequency":[0,10,20],)"
              R"("frequencyOffset":200,"id":"id","subplotNum":0}],"dataMax":"9","dataMin":"-3","id":"id",)"
              R"("numChannels":2,"numInterpolationPoints":0,"spectrumLength":3},null,{"channel":[{"NaNIdx":[0],)"
              R"("data":[0,1,2],"dbid":"db0","frequency":[0,10,20],"frequencyOffset":0,"id":"id","subplotNum":0}],)"
              R"("dataMax":"2","dataMin":"-inf","id":"id","numChannels":1,"numInterpolationPoints":0,)"
              R"("spectrumLength":3}])");
    const auto channels = at(message, "signals", 0)->getArray("channel");
    EXPECT_FALSE(channels->getObject(0)->getArray("data")->get(1).isInteger());
    EXPECT_EQ(channels->getObject(0)->getArray("frequency").get(), channels->getObject(1)->getArray("frequency").get());
    EXPECT_EQ(1u, message->getObject("measurements")->size());
    EXPECT_TRUE(message->getObject("measurements")->has("signalAndChannel"));
}

TEST(FrequencyDataStrategy, sendsTheNewestLinesFirst) {
    TestClient client;
    auto& record = publish(client, 100);
    record.showSpectrogram = true;
    record.numSpectrogramLines = 10;
    FrequencyDataStrategy strategy;
    Values buffer = ramp(0, 800);  // four lines in the buffer
    buffer[400 + 100 + 2] = nan;   // line 2, third point
    auto channel = at(signalOf(strategy, client, buffer), "channel", 0);
    EXPECT_EQ(400u, channel->getArray("data")->size());
    EXPECT_EQ(700.0, channel->getArray("data")->getElement<double>(0));
    EXPECT_EQ(600.0, channel->getArray("data")->getElement<double>(100));
    EXPECT_EQ(400.0, channel->getArray("data")->getElement<double>(300));
    EXPECT_EQ("[202]", text(channel, "NaNIdx"));
    record.numSpectrogramLines = 2;
    const auto signal = signalOf(strategy, client, buffer);
    EXPECT_EQ(200u, at(signal, "channel", 0)->getArray("data")->size());
    EXPECT_EQ("600", signal->getValue<std::string>("dataMin"));  // the oldest line that was written
    EXPECT_EQ("699", signal->getValue<std::string>("dataMax"));
    // Without the spectrogram the tail of the block is the spectrum.
    record.showSpectrogram = false;
    channel = at(signalOf(strategy, client, buffer), "channel", 0);
    EXPECT_EQ(700.0, channel->getArray("data")->getElement<double>(0));
}

TEST(FrequencyDataStrategy, staysInsideTheBuffer) {
    const struct {
        std::size_t size;
        int channels;
        unsigned long length;
        std::uint64_t lines;
        const char* what;
    } rows[] = {
        {6, 1, 7, 10, "a block shorter than a spectrum"},
        {1, 3, 7, 10, "not a value a block"},
        {20, 0, 5, 10, "no channel"},
        {20, 1, 5, 0, "no lines"},
        {20, -1, 5, 10, "no blocks"},
    };
    for (const auto& row : rows) {
        for (const bool isSpectrogram : {false, true}) {
            TestClient client({row.channels});
            auto& record = publish(client, row.length);
            record.showSpectrogram = isSpectrogram;
            record.numSpectrogramLines = row.lines;
            FrequencyDataStrategy strategy;
            const auto signal = signalOf(strategy, client, ramp(0, row.size));
            ASSERT_LE(1u, signal->getArray("channel")->size()) << row.what;
            if (row.lines != 0 || isSpectrogram) {
                EXPECT_EQ(0u, at(signal, "channel", 0)->getArray("data")->size()) << row.what;
                EXPECT_EQ("0", signal->getValue<std::string>("dataMin")) << row.what;
            }
        }
    }
}

TEST(FrequencyDataStrategy, countsThePointsBetweenUnevenFrequencies) {
    const struct {
        Values grid;
        double step;
        int points;
    } rows[] = {
        {{0, 1, 3, 6}, 1, 0 + 1 + 2},
        {{0, 1, 3, 6}, 0, 0},
        {{0, 1, 3, 6}, -1, 0},
        {{0, 1, 3, 6}, nan, 0},
        {{0, 2.5}, 1, 2},
        {{3, 2, 1}, 1, 0},
        {{5}, 1, 0},
        {{0, 1e6}, 1, 999999},
        {{0, 1e30}, 1e-30, 2147483647},  // more than a count holds
    };
    for (const auto& row : rows) {
        TestClient client;
        auto& record = publish(client, row.grid.size());
        record.linearFrequencyVector = false;
        record.minDeltaF = row.step;
        Values buffer = row.grid;
        buffer.resize(2 * row.grid.size());
        FrequencyDataStrategy strategy;
        const auto points = [&] { return signalOf(strategy, client, buffer)->getValue<int>("numInterpolationPoints"); };
        EXPECT_EQ(row.points, points()) << row.step;
        record.linearFrequencyVector = true;  // no figure of an earlier update
        EXPECT_EQ(0, points());
    }
}

TEST(FrequencyDataStrategy, takesTheLengthsOfAThinner) {
    TestClient client({1, 1, 1});
    publish(client, 100);
    client.board().addCustomSetting(SpectrumThinnerFilter::thinnedSpectrumLength, std::vector<unsigned long>{4, 0});
    activate(client, "spectrum_thinner_filter");
    FrequencyDataStrategy strategy;
    const auto message = update(strategy, client, {ramp(0, 8), ramp(0, 8), ramp(0, 8)});
    const auto channel = [&](unsigned signal) { return at(at(message, "signals", signal), "channel", 0); };
    EXPECT_EQ("[4,5,6,7]", text(channel(0), "data"));
    EXPECT_EQ("[0,1,2,3]", text(channel(0), "frequency"));
    EXPECT_EQ("[]", text(channel(1), "data"));  // thinned to nothing
    EXPECT_EQ("[]", text(channel(2), "data"));  // no length known
}

TEST(FrequencyDataStrategy, attachesWhatIsActive) {
    TestClient client({1, 1});
    auto& record = publish(client, 2);
    record.plotMaxHoldTrace = true;
    record.maxHoldTrace = {1, 2, 3, 4};
    record.numChannels = {1, 1};
    FrequencyDataStrategy strategy;
    const std::vector<Values> data = {{0, 1, 5, 6}, {0, 1, 7, 8}};
    auto message = update(strategy, client, data);
    EXPECT_EQ("[[3,4]]", text(at(message, "signals", 1)->getObject("traceHold"), "maxHold"));
    EXPECT_FALSE(at(message, "signals", 1)->getObject("traceHold")->has("minHold"));
    record.showSpectrum = false;
    EXPECT_FALSE(at(update(strategy, client, data), "signals", 1)->has("traceHold"));

    for (const char* stage : {"channel_measurements_filter", "distortion_measurements_filter",
                              "frequency_peak_finder_filter", "spectral_mask_tester_filter", "phase_noise_filter"}) {
        activate(client, stage);
    }
    phaseNoiseStruct phaseNoise;
    client.board().addCustomSetting(PhaseNoiseFilter::phaseNoise, phaseNoise);
    message = update(strategy, client, data);
    const auto measurements = message->getObject("measurements");
    EXPECT_EQ(5u, measurements->size());
    for (const char* key : {"signalAndChannel", "channel", "distortion", "peaks", "spectralMask"}) {
        EXPECT_TRUE(measurements->has(key)) << key;
    }
    EXPECT_FALSE(message->has("phaseNoise"));  // no data yet
    board::find<phaseNoiseStruct>(client.board(), PhaseNoiseFilter::phaseNoise)->isNewDataReady = true;
    EXPECT_EQ(2u, update(strategy, client, data)->getArray("phaseNoise")->size());
}

}  // namespace
