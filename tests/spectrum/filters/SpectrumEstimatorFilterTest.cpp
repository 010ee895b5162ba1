#include "SpectrumEstimatorFilter.h"

#include "Board.h"
#include "PackageText.h"
#include "SpectrumFilterTestSupport.h"
#include "Test.h"

namespace {

/// Segments of 64 samples at 6400 Hz without a window: bins 100 Hz apart, exact for tones on them.
PropertyList plain(PropertyList list) {
    return list.append(optionList(
        "sampleRate=6400 frequencyResolutionMethod=window-length windowLength=64 autoFFTLength=false fftLength=64 "
        "window=rectangular frequencyRange=one-sided spectrumUnits=watts forgettingFactor=0"));
}

// A tone of amplitude A on a bin has the power A^2 / 2, whatever the cuts of the stream.
TEST(SpectrumEstimatorFilter, publishesWhatItEstimates) {
    for (const std::size_t cut : {1u, 7u, 100u}) {
        TestClient client({2, 2});
        client->setIsComplex({0, 1});
        SpectrumEstimatorFilter filter;
        filter.tuneImpl(plain(client.setup()));
        EXPECT_TRUE(filter.isActive());
        EXPECT_EQ((Values{1.0, 0.5}), client->channelSizeFactors);
        Values out;
        for (std::size_t from = 0; from < 256; from += cut) {
            const Values result =
                feed(filter, joined({sine(cut, 2.0, 5.0 / 64, from), sine(cut, 4.0, 9.0 / 64, from)}), 0);
            out = result.empty() ? out : result;
            feed(filter, Values(2 * cut, 1.0), 1);
        }
        ASSERT_EQ(3u * 33u, out.size()) << cut;
        EXPECT_EQ(500.0, out[5]);
        EXPECT_NEAR(2.0, out[33 + 5], 1e-13);
        EXPECT_NEAR(8.0, out[66 + 9], 1e-13);
        const auto published = record(client);
        EXPECT_EQ(33u, published.spectrumLength);
        EXPECT_EQ(33u, SpectrumEstimatorFilter::getSpectrumLength(client.name()));
        EXPECT_EQ(100.0, SpectrumEstimatorFilter::getRBW(client.name()));
        EXPECT_TRUE(published.isNewDataReady);
        EXPECT_EQ((std::vector<int>{2, 1}), published.numChannels);
        EXPECT_EQ(Values(out.begin(), out.begin() + 33), published.frequencyVector);
        EXPECT_EQ(Values(out.begin() + 33, out.end()), published.spectrumData[0]);
        EXPECT_EQ(33u, published.spectrumData[1].size());
    }
}

TEST(SpectrumEstimatorFilter, keepsAndResetsAsItsTunesAsk) {
    TestClient client;
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(plain(client.setup()).addLogical("plotMaxHoldTrace", true));
    const auto run = [&] { return feed(filter, sine(64, 1.0, 5.0 / 64)); };
    EXPECT_EQ(66u, run().size());
    const auto updates = [&] { return record(client).numUpdatesProcessed; };
    EXPECT_EQ(1u, updates());
    filter.tuneImpl(TestClient::tune());         // nothing
    filter.tuneImpl(TestClient::tune("rbw=5"));  // ignored while the RBW is automatic
    run();
    EXPECT_EQ(2u, updates());
    EXPECT_EQ(100.0, record(client).rbw);
    filter.tuneImpl(TestClient::tune("spectrumUnits=dbw"));  // new units, the counters go on
    EXPECT_NEAR(10.0 * std::log10(0.5), run()[33 + 5], 1e-12);
    EXPECT_EQ(3u, updates());
    const auto* const board = SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(client.name());
    EXPECT_NEAR(10.0 * std::log10(0.5), board->maxHoldTrace[5], 1e-12);
    // A custom window counts from the same list on that chooses it.
    filter.tuneImpl(TestClient::tune("window=custom").addDoubles("customWindow", Values(64, 3.0)));
    EXPECT_NEAR(10.0 * std::log10(0.5), run()[33 + 5], 1e-12);
    EXPECT_EQ(64u, record(client).segmentLength);
    filter.tuneImpl(TestClient::tune("frequencyResolutionMethod=rbw window=rectangular autoRBW=false rbw=200"));
    run();
    EXPECT_EQ(200.0, record(client).rbw);
    // A setup begins anew.
    filter.tuneImpl(plain(client.setup()));
    run();
    EXPECT_EQ(1u, updates());
}

// The first whole segment of one signal begins the traces of all anew, also of one that has no update to show for it.
TEST(SpectrumEstimatorFilter, publishesTracesThatBeginAnewWithAnotherSignal) {
    TestClient client({1, 1});
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(plain(client.setup())
                        .addLogical("enableDesiredSegmentLengthThreshold", false)
                        .addLogical("plotMaxHoldTrace", true));
    feed(filter, sine(32, 1.0, 5.0 / 64), 0);
    feed(filter, sine(32, 1.0, 5.0 / 64), 1);
    EXPECT_LT(0.0, record(client).maxHoldTrace[33 + 5]);
    feed(filter, sine(32, 1.0, 5.0 / 64, 32), 0);
    EXPECT_NEAR(0.5, record(client).maxHoldTrace[5], 1e-13);
    EXPECT_EQ(-std::numeric_limits<double>::infinity(), record(client).maxHoldTrace[33 + 5]);
}

TEST(SpectrumEstimatorFilter, givesOutTheLastUpdateDuringAReplay) {
    for (const bool isAggregated : {false, true}) {
        TestClient client;
        SpectrumEstimatorFilter filter;
        PropertyList list = plain(client.setup()).addLogical("showSpectrogram", isAggregated);
        filter.tuneImpl(list.addLogical("autoTimeResolution", !isAggregated).addDouble("timeResolution", 0.02));
        const Values live = feed(filter, noise(256));
        ASSERT_FALSE(live.empty());
        client->setIsDataSourceRepository(true);
        filter.tuneImpl(client.setup());
        EXPECT_EQ(live, feed(filter, noise(256, 2))) << isAggregated;
        EXPECT_TRUE(client->isDataSourceRepository());
        // A changed setting lets the stored frame be computed again; too short a frame gives nothing and ends it.
        filter.tuneImpl(TestClient::tune("window=hann"));
        EXPECT_TRUE(feed(filter, noise(2)).empty());
        EXPECT_FALSE(client->isDataSourceRepository());
    }
}

TEST(SpectrumEstimatorFilter, takesOtherChannelsInMidStream) {
    TestClient client({4});
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(plain(client.setup()));
    feed(filter, noise(4 * 100));
    for (const int channels : {1, 3, 0}) {
        client.numChannels = {channels};
        filter.tuneImpl(client.sizeChange());
        const auto out = feed(filter, noise(static_cast<std::size_t>(channels) * 100));
        EXPECT_EQ(channels == 0 ? 0u : static_cast<std::size_t>(33 * (channels + 1)), out.size());
    }
    client.numChannels = {2};
    client->setIsComplex({1});
    filter.tuneImpl(client.setup());
    EXPECT_EQ(33u * 2u, feed(filter, noise(2 * 64)).size());
    EXPECT_TRUE(feed(filter, noise(64), 7).empty());  // no such signal
    client.numChannels = {0, 2};                      // channel 0 is that of the second signal
    client->setIsComplex({0, 0});
    client.frameSize = {64, 64};
    filter.tuneImpl(client.setup());
    feed(filter, {}, 0);
    EXPECT_EQ(33u * 3u, feed(filter, noise(128), 1).size());
}

TEST(SpectrumEstimatorFilter, packagesHoldTraces) {
    TestClient client({1, 2});
    spectrumEstimatorMetaDataStruct stored;
    stored.plotMaxHoldTrace = true;
    stored.plotMinHoldTrace = true;
    stored.numChannels = {1, 2};
    stored.maxHoldTrace = {9, 9, 1, -infinity, 3, nan};
    stored.minHoldTrace = {-7, infinity, 1, 2};
    client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumEstimatorMetaData, stored);
    JsonArrayPool arrays;
    // The extremes are those of all signals; the last channel's minimum is not held.
    EXPECT_EQ(textOf(SpectrumEstimatorFilter::packageImpl(client.name(), 1, 2, 2, arrays)),
              R"({"maxHold":[[1,0],[3,0]],"maxHoldDataMax":"9","maxHoldNaNIdx":[[1],[1]],)"
              R"("minHold":[[1,2],[]],"minHoldDataMin":"-7","minHoldNaNIdx":[[],[]]})");
}

}  // namespace
