#include "EstimatorSupport.h"

namespace {

using Set = std::function<void(SpectrumEstimator&)>;

void zoom(SpectrumEstimator& e) {
    e.setFrequencyResolutionMethod(Resolution::rbw);
    setBand(e, 48000.0, -999.5, 3001, 30);  // Fs' = 8000 Hz, 400 points of a hann window
    e.setAutoFFTLength(true);
}

void bank(SpectrumEstimator& e) {
    e.setMethod(Method::filterBank);
    e.setFrequencyResolutionMethod(Resolution::rbw);
    setRBW(e, 400);
}

const struct Setting {
    const char* name;
    Set set;
} settings[] = {
    {"welch", [](SpectrumEstimator& e) { e.setOverlapPercent(50); }},
    {"welch without averaging", [](SpectrumEstimator& e) { e.setOverlapPercent(99), e.setForgettingFactor(0); }},
    {"zoom", zoom},
    {"zoom with overlap", [](SpectrumEstimator& e) { zoom(e), e.setOverlapPercent(70); }},
    {"bank", bank},
    {"bank in a zoom", [](SpectrumEstimator& e) { zoom(e), bank(e), e.setRBW(30); }},
};

Bench makeBench(const Setting& setting) {
    Bench bench;
    bench.usePlainSettings(48000.0, 150, 256);
    setting.set(bench.estimator);
    bench.estimator.setPlotMaxHoldTrace(true);
    return bench;
}

std::vector<Bench::Signal> mixedSignals() {
    return {noise(1, 30000, 2, false), noise(20, 30000, 4, true), noise(40, 30000, 1, false)};
}

TEST(SpectrumEstimatorStreaming, AnyCutIntoFramesGivesTheSameSpectra) {
    const auto signals = mixedSignals();
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.name);
        Bench whole = makeBench(setting);
        whole.feed(signals, 30000);
        Bench cut = makeBench(setting);
        std::mt19937 random(3);
        cut.feed(signals, 0, 30000, 1700, &random);
        ASSERT_GT(cut.updates, 2);
        for (std::size_t signal = 0; signal < signals.size(); ++signal) {
            EXPECT_EQ(whole.outs[signal], cut.outs[signal]) << "signal " << signal;
        }
        EXPECT_EQ(whole.record().maxHoldTrace, cut.record().maxHoldTrace);
        EXPECT_EQ(whole.record().numSamplesProcessed, cut.record().numSamplesProcessed);
        EXPECT_EQ(whole.record().numUpdatesProcessed, cut.record().numUpdatesProcessed);
    }
}

TEST(SpectrumEstimatorStreaming, ResetEqualsNewAndChannelsStayApart) {
    const auto signals = mixedSignals();
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.name);
        Bench all = makeBench(setting);
        all.feed({noise(70, 20000, 2, false), noise(80, 20000, 4, true), noise(90, 20000, 1, false)}, 777);
        all.estimator.release(true);
        all.feed(signals, 1111);

        // Each channel by itself; a real one in a complex store still gets real results.
        const auto alone = [&](const Bench::Signal& signal) {
            Bench bench = makeBench(setting);
            bench.feed({signal}, 1111);
            return bench.row();
        };
        constexpr double tolerance = 1e-13;  // real and complex stores round differently
        expectClose(all.row(0, 1), alone({{signals[0].columns[1]}, false}), tolerance);
        expectClose(all.row(1, 0), alone({{signals[1].columns[0], signals[1].columns[2]}, true}), tolerance);
        expectClose(all.row(1, 1), alone({{signals[1].columns[1], signals[1].columns[3]}, true}), tolerance);
        expectClose(all.row(2, 0), alone(signals[2]), tolerance);
    }
}

TEST(SpectrumEstimatorStreaming, WaitsForTheFirstWholeSegment) {
    Bench bench;
    bench.usePlainSettings(10000.0, 1024, 1024);
    const Bench::Signal signal = noise(5, 4096, 1, false);
    bench.feed({signal}, 0, 1023, 500);
    EXPECT_TRUE(bench.outs[0].empty());
    EXPECT_FALSE(bench.record().isNewDataReady);
    bench.feed({signal}, 1023, 1024, 500);
    EXPECT_EQ(bench.outs[0].size(), 2048U);
    EXPECT_TRUE(bench.record().isNewDataReady);
    EXPECT_EQ(bench.record().numSamplesProcessed, 1024U);
    const Values before = bench.outs[0];
    bench.feed({signal}, 1024, 2000, 500);
    EXPECT_EQ(bench.outs[0], before) << "between updates nothing changes";
    EXPECT_TRUE(bench.record().isNewDataReady);
    EXPECT_EQ(bench.record().numUpdatesProcessed, 1U);
}

// Every frame gives a spectrum of a growing segment, with a window of its length and the RBW that goes with it.
TEST(SpectrumEstimatorStreaming, GrowsWithoutTheThreshold) {
    const auto grow = [](double overlap) {
        Bench bench;
        bench.usePlainSettings(10000.0, 1024, 1024);
        bench.estimator.setEnableDesiredSegmentLengthThreshold(false);
        bench.estimator.setFrequencyRange(Range::oneSided);
        bench.estimator.setOverlapPercent(overlap);
        return bench;
    };
    Bench bench = grow(0);
    const Bench::Signal carrier{{tone(1250, 2, 4096, 10000.0)}, false};
    bench.feed({carrier}, 0, 100, 100);
    EXPECT_EQ(bench.estimator.getSegmentLength(), 100U);
    EXPECT_EQ(bench.estimator.getWindowData().size(), 100U);
    EXPECT_NEAR(bench.record().transientRBW, 150.0, 1e-9);
    EXPECT_EQ(bench.record().numSegments, 1U);
    EXPECT_EQ(bench.record().numAdditionalSamples, 924U);
    EXPECT_FALSE(bench.record().desiredSegmentLengthMet);
    EXPECT_NEAR(bench.row()[bench.binOf(1250)], 2.0, 1e-6) << "half-way periods leave side lobes of -60 dB and less";
    bench.feed({carrier}, 100, 1500, 1400);
    EXPECT_TRUE(bench.record().desiredSegmentLengthMet);
    EXPECT_EQ(bench.record().numAdditionalSamples, 924U) << "that of the last update before";
    EXPECT_NEAR(bench.record().transientRBW, 1.5 * 10000.0 / 1024, 1e-9);
    const Values before = bench.outs[0];
    bench.feed({carrier}, 1500, 1600, 100);
    EXPECT_EQ(bench.outs[0], before) << "from now on whole segments only";

    Bench overlapping = grow(50);  // 512 zeros stand in front
    overlapping.feed({carrier}, 0, 100, 100);
    EXPECT_EQ(overlapping.estimator.getSegmentLength(), 612U);
    EXPECT_EQ(overlapping.record().numAdditionalSamples, 412U);

    Bench zoomed = grow(70);
    Bench atOnce = grow(70);
    zoom(zoomed.estimator);  // by 6, L = 400, 280 points shared
    zoom(atOnce.estimator);
    zoomed.feed({carrier}, 0, 125, 125);
    EXPECT_EQ(zoomed.estimator.getSegmentLength(), 280U + 20U);
    EXPECT_EQ(zoomed.record().numAdditionalSamples, 600U);
    zoomed.feed({carrier}, 125, 720, 100);
    EXPECT_TRUE(zoomed.record().desiredSegmentLengthMet);
    atOnce.feed({carrier}, 0, 720, 720);
    EXPECT_EQ(zoomed.row(), atOnce.row()) << "updates on the way leave no trace";
}

}  // namespace
