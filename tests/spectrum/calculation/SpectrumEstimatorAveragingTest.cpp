#include "EstimatorSupport.h"

namespace {

constexpr std::size_t L = 100;

/// Frames of one segment each, without overlap.
Bench makeBench() {
    Bench bench;
    bench.usePlainSettings(1000.0, L, L);
    return bench;
}

/// The periodograms of the segments of a signal, each by itself.
std::vector<Values> periodograms(const Values& samples) {
    Bench bench = makeBench();
    bench.estimator.setForgettingFactor(0.0);
    std::vector<Values> rows;
    for (std::size_t from = 0; from + L <= samples.size(); from += L) {
        bench.feed({{{samples}, false}}, from, from + L, L);
        rows.push_back(bench.row());
    }
    return rows;
}

// The average in closed form: weights ff^(K - 1 - k), normed. Its recursion rounds once a step.
TEST(SpectrumEstimatorAveraging, WeighsByForgettingFactorCountAndVideoBandwidth) {
    const Values samples = colouredNoise(5, 12 * L);
    const std::vector<Values> rows = periodograms(samples);
    const struct {
        Averaging method;
        double option, factor;
        bool allowTransient = true;
    } settings[] = {{Averaging::exponential, 0.7, 0.7},
                    {Averaging::exponential, 1.0, 1.0},
                    {Averaging::exponential, 1.0, 0.0, false},
                    {Averaging::running, 4, 0.6},
                    {Averaging::running, 1, 0.0},
                    {Averaging::vbw, 10 / (2 * M_PI), 0.5}};
    for (const auto& setting : settings) {
        Bench bench = makeBench();
        bench.estimator.setAveragingMethod(setting.method);
        bench.estimator.setForgettingFactor(setting.option);
        bench.estimator.setSpectralAverages(static_cast<std::size_t>(setting.option));
        bench.estimator.setAllowTransientAveraging(setting.allowTransient);
        bench.estimator.setAutoVBW(false);
        bench.estimator.setVBW(setting.option);  // an RBW of 15 Hz and 1.5 bins: 10 Hz / (2 pi) for a factor of 1/2
        bench.feed({{{samples}, false}}, 3 * L);
        const Values average = bench.row();
        for (const std::size_t bin : {0U, 17U, 50U, 99U}) {
            double sum = 0.0;
            double weights = 0.0;
            for (std::size_t k = 0; k < rows.size(); ++k) {
                const double weight = std::pow(setting.factor, static_cast<double>(rows.size() - 1 - k));
                sum += weight * rows[k][bin];
                weights += weight;
            }
            EXPECT_NEAR(average[bin], sum / weights, 1e-14 * sum / weights) << setting.factor;
        }
    }
}

TEST(SpectrumEstimatorAveraging, KeepsNaNOutUnlessAskedTo) {
    Values samples = colouredNoise(6, 3 * L);
    samples[L + 5] = nan;
    const Values first = periodograms(samples)[0];
    for (const bool use : {false, true}) {
        Bench bench = makeBench();
        bench.estimator.setUseNaNsInCalculatingAverages(use);
        bench.feed({{{samples}, false}}, 0, L, L);
        EXPECT_FALSE(bench.record().dataHasNaNs);
        EXPECT_EQ(bench.row(), first);
        bench.feed({{{samples}, false}}, L, 3 * L, L);
        EXPECT_TRUE(bench.record().dataHasNaNs);
        EXPECT_EQ(std::isnan(bench.row()[3]), use);
        bench.estimator.release(true);
        bench.feed({{{samples}, false}}, 0, L, L);
        EXPECT_FALSE(bench.record().dataHasNaNs);
        EXPECT_EQ(bench.row(), first) << "the average begins anew";
    }
}

TEST(SpectrumEstimatorAveraging, HoldsExtremesUntilTheyAreReset) {
    const Values samples = colouredNoise(8, 6 * L);
    const std::vector<Values> rows = periodograms(samples);
    Bench bench = makeBench();
    bench.estimator.setForgettingFactor(0.0);
    bench.estimator.setPlotMaxHoldTrace(true);
    bench.feed({{{samples}, false}}, 0, 3 * L, 3 * L);
    EXPECT_EQ(bench.record().maxHoldTrace[9], std::max({rows[0][9], rows[1][9], rows[2][9]}));
    EXPECT_TRUE(bench.record().minHoldTrace.empty());

    // A trace that comes on later begins then; a window tune keeps the other one.
    bench.estimator.setPlotMinHoldTrace(true);
    bench.estimator.setWindow(Window::hamming);
    bench.feed({{{samples}, false}}, 3 * L, 3 * L + 1, 1);
    EXPECT_EQ(bench.record().minHoldTrace[9], infinity);
    EXPECT_EQ(bench.record().maxHoldTrace[9], std::max({rows[0][9], rows[1][9], rows[2][9]}));
    bench.estimator.setWindow(Window::hann);
    bench.feed({{{samples}, false}}, 4 * L, 6 * L, L);
    EXPECT_EQ(bench.record().minHoldTrace[9], std::min(rows[4][9], rows[5][9]));
    EXPECT_EQ(bench.record().maxHoldTrace[9], std::max({rows[0][9], rows[1][9], rows[2][9], rows[4][9], rows[5][9]}));

    bench.estimator.release(true);
    bench.feed({{{samples}, false}}, 0, L, L);
    EXPECT_EQ(bench.record().maxHoldTrace, rows[0]);
    EXPECT_EQ(bench.record().minHoldTrace, rows[0]);
}

}  // namespace
