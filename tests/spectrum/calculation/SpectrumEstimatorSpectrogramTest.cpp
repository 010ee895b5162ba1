#include "EstimatorSupport.h"

namespace {

constexpr std::size_t L = 100;

/// Segments of 0.1 s; an RBW of 10 Hz.
Bench makeBench(double timeResolution) {
    Bench bench;
    auto& e = bench.estimator;
    e.setSampleRate(1000.0);
    e.setWindow(Window::rectangular);
    setRBW(e, 10.0);
    setFFTLength(e, L);
    e.setFrequencyRange(Range::oneSided);
    e.setSpectrumUnits(Units::watts);
    e.setForgettingFactor(0.0);
    e.setShowSpectrogram(true);
    e.setAutoTimeResolution(timeResolution == 0.0);
    e.setTimeResolution(timeResolution);
    return bench;
}

TEST(SpectrumEstimatorSpectrogram, KeepsEverySegmentByItself) {
    const Values a = colouredNoise(1, 3 * L);
    const Values b = colouredNoise(2, 3 * L);
    Bench lines = makeBench(0.0);
    lines.feed({{{a, b}, false}}, 3 * L);
    const std::size_t S = lines.points();
    ASSERT_EQ(S, 51U);
    ASSERT_EQ(lines.outs[0].size(), 3 * 3 * S);
    EXPECT_EQ(part(lines.outs[0], 0, S), lines.grid());
    EXPECT_EQ(lines.record().numSpectrumBlocks, 3U);
    EXPECT_DOUBLE_EQ(lines.record().timeResolution, 0.1);
    EXPECT_DOUBLE_EQ(lines.record().timeIncrement, 0.1);
    EXPECT_EQ(lines.record().spectrumData[0], part(lines.outs[0], 3 * S, 6 * S));
    Bench single = makeBench(0.0);
    for (std::size_t g = 0; g < 3; ++g) {
        single.feed({{{a, b}, false}}, g * L, (g + 1) * L, L);
        EXPECT_EQ(part(lines.outs[0], (3 + g) * S, S), single.row(0, 0)) << "segment " << g;
        EXPECT_EQ(part(lines.outs[0], (6 + g) * S, S), single.row(0, 1)) << "segment " << g;
    }
}

// 0.25 s are two segments and a half: the half comes from the row that was carried over.
TEST(SpectrumEstimatorSpectrogram, MakesALineOfSeveralSegments) {
    const Values samples = colouredNoise(3, 9 * L);
    Bench single = makeBench(0.0);
    std::vector<Values> rows;
    for (std::size_t g = 0; g < 9; ++g) {
        single.feed({{{samples}, false}}, g * L, (g + 1) * L, L);
        rows.push_back(single.row());
    }
    Bench lines = makeBench(0.25);
    lines.feed({{{samples}, false}}, 0, 5 * L, 5 * L);
    const auto& record = lines.record();
    EXPECT_EQ(record.numSamplesPerUpdate, 2 * L);
    EXPECT_EQ(record.numSpectrumBlocks, 2U);
    EXPECT_DOUBLE_EQ(record.timeIncrement, 0.25);
    EXPECT_DOUBLE_EQ(record.timeResolution, 0.25);
    const std::size_t S = lines.points();
    const auto expectLine = [&](std::size_t block, double carried, std::size_t g) {
        for (std::size_t k = 0; k < S; ++k) {
            const double carry = carried < 0 ? 0.0 : rows[static_cast<std::size_t>(carried)][k];
            ASSERT_NEAR(lines.outs[0][(2 + block) * S + k], (0.5 * carry + rows[g][k] + rows[g + 1][k]) / 3,
                        1e-15 * (carry + rows[g][k] + rows[g + 1][k]));
        }
    };
    ASSERT_EQ(lines.outs[0].size(), 4 * S);
    expectLine(0, -1, 0);
    expectLine(1, 1, 2);
    // The fifth segment waited; row 1 of the update before, kept once a line, is carried into the next.
    lines.feed({{{samples}, false}}, 5 * L, 9 * L, 4 * L);
    expectLine(0, 1, 4);
    expectLine(1, 5, 6);
}

TEST(SpectrumEstimatorSpectrogram, CountsLinesAndStaysWithinTheOutput) {
    Bench bench = makeBench(0.25);
    bench.estimator.setAutoTimeSpan(false);
    bench.estimator.setTimeSpan(1.3);
    // Several channels: the output is made for one, the rest of it is left as it was.
    const Bench::Signal wide{{colouredNoise(1, 8 * L), colouredNoise(2, 8 * L), colouredNoise(3, 8 * L)}, false};
    bench.feed({wide, wide}, 4 * L);
    EXPECT_EQ(bench.record().numSpectrogramLines, 6U);
    EXPECT_DOUBLE_EQ(bench.record().timeSpan, 1.3);
    EXPECT_EQ(bench.outs[0].size(), 4 * 2 * bench.points());
    Bench alone = makeBench(0.25);
    alone.feed({{{wide.columns[0]}, false}}, 4 * L);
    const std::size_t lines = 2 * bench.points();
    EXPECT_EQ(part(bench.outs[0], 3 * lines, lines), part(alone.outs[0], lines, lines));
    bench.estimator.setAutoTimeSpan(true);
    bench.feed({wide, wide}, 4 * L);
    EXPECT_EQ(bench.record().numSpectrogramLines, 100U) << "the time span before leaves no trace";

    Bench shortest = makeBench(0.05);
    shortest.estimator.setAutoTimeSpan(false);
    shortest.estimator.setTimeSpan(0.01);
    shortest.feed({wide}, L);
    EXPECT_EQ(shortest.record().numSpectrogramLines, 2U);
    EXPECT_DOUBLE_EQ(shortest.record().timeIncrement, 0.15) << "a resolution below 1 / RBW adds its distance";
}

}  // namespace
