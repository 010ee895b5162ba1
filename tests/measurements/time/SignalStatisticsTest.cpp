#include "SignalStatistics.h"

#include <bit>

#include "ExtremeScan.h"
#include "MedianSelection.h"
#include "Test.h"

namespace {

Values samples(std::size_t count, double offset) {
    Values values(count);
    std::uint64_t state = 12345;
    for (double& value : values) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        value = static_cast<double>(state >> 11) / 0x1p50 + offset;
    }
    return values;
}

void expectRelative(double expected, double actual) {
    EXPECT_LE(std::fabs(actual - expected), 1e-12 * std::fabs(expected)) << expected << " vs " << actual;
}

// The bound is that of a sum of 65536 terms of one magnitude: eps * sqrt(N) = 6e-14, and room for the small means.
TEST(SignalStatistics, agreesWithAnIndependentImplementation) {
    const struct {
        std::size_t count;
        double offset, mean, variance, median, meanSquare;
    } references[] = {
#include "signal_statistics_vectors.inc"
    };
    for (const auto& reference : references) {
        SCOPED_TRACE(reference.count);
        Values data = samples(reference.count, reference.offset);
        data.insert(data.begin(), {1e9, -1e9});  // outside the range
        data.push_back(1e9);
        SignalStatistics statistics;
        const signalStatsStruct& stats =
            statistics.computeSignalStatistics(data.data(), {2, 2 + reference.count}, MinMaxLastMaximum);
        expectRelative(reference.mean, stats.mean);
        expectRelative(reference.variance, stats.variance);
        expectRelative(std::sqrt(reference.variance), stats.standardDeviation);
        EXPECT_EQ(reference.median, stats.median);
        expectRelative(reference.meanSquare, stats.meanSquare);
        expectRelative(std::sqrt(reference.meanSquare), stats.rms);
        EXPECT_EQ(stats.yMax - stats.yMin, stats.peakToPeak);
        EXPECT_EQ(*std::max_element(data.begin() + 2, data.end() - 1), data[2 + static_cast<std::size_t>(stats.xMax)]);
        EXPECT_EQ(*std::min_element(data.begin() + 2, data.end() - 1), data[2 + static_cast<std::size_t>(stats.xMin)]);
    }
}

// The plain scans are the oracle, over data that is full of ties, special values and odd lengths.
TEST(SignalStatistics, extremesAndMedianKeepTheBitsOfThePlainScans) {
    const Values alphabets[] = {
        {-1, 0, 1, 2}, {-0.0, 0.0}, {-0.0, 0.0, 1, -1}, {0.5, nan, -0.5, 2}, {infinity, -infinity, 0, 1}, {nan},
        {7},           {}};
    Values scratch;
    std::uint64_t state = 1;
    for (const std::size_t count : {1u, 2u, 7u, 8u, 9u, 511u, 4095u, 4096u, 4097u, 9001u}) {
        for (const Values& alphabet : alphabets) {
            Values data = samples(count, -4.0);
            for (double& value : data) {
                state = state * 6364136223846793005u + 1442695040888963407u;
                value = alphabet.empty() ? value : alphabet[(state >> 33) % alphabet.size()];
            }
            const auto expectAt = [&](ExtremePositions found, auto minimum, auto maximum) {
                EXPECT_EQ(minimum - data.begin(), static_cast<std::ptrdiff_t>(found.minimum));
                EXPECT_EQ(maximum - data.begin(), static_cast<std::ptrdiff_t>(found.maximum));
            };
            const auto [minimum, maximum] = std::minmax_element(data.begin(), data.end());
            expectAt(findExtremes(data.data(), count, MinMaxLastMaximum), minimum, maximum);
            expectAt(findExtremes(data.data(), count, MinMaxFirstMaximum), std::min_element(data.begin(), data.end()),
                     std::max_element(data.begin(), data.end()));

            Values copy = data;
            const auto lower = copy.begin() + static_cast<std::ptrdiff_t>((count - 1) / 2);
            const auto upper = copy.begin() + static_cast<std::ptrdiff_t>(count / 2);
            std::nth_element(copy.begin(), lower, copy.end());
            std::nth_element(lower, upper, copy.end());
            const double expected = (*lower + *upper) * 0.5;
            const double actual = selectMedian(data.data(), count, scratch);
            EXPECT_TRUE(std::isnan(expected)
                            ? std::isnan(actual)
                            : std::bit_cast<std::uint64_t>(expected) == std::bit_cast<std::uint64_t>(actual))
                << expected << " vs " << actual << ", " << count << " samples";
        }
    }
}

TEST(SignalStatistics, medianSurvivesABracketThatMisses) {
    // Sorted, constant but for the middle, and two-valued data: brackets of every width, ranks on their edges.
    Values scratch;
    for (const std::size_t count : {4096u, 8191u, 100000u}) {
        EXPECT_EQ(static_cast<double>(count - 1) / 2.0, selectMedian(ramp(0, count).data(), count, scratch));
        Values step(count, -1.0);
        std::fill(step.begin() + static_cast<std::ptrdiff_t>(count / 2), step.end(), 1.0);
        EXPECT_EQ(count % 2 == 0 ? 0.0 : 1.0, selectMedian(step.data(), count, scratch));
        Values spike(count, 2.0);
        spike[count / 2] = 1e300;
        EXPECT_EQ(2.0, selectMedian(spike.data(), count, scratch));
    }
}

TEST(SignalStatistics, settingsAndFlagsDecideWhatIsWritten) {
    const Values data = {1, 5, 3, 11};
    SignalStatistics statistics;
    statistics.setComputeMin(false);
    statistics.setComputeMax(false);
    statistics.setComputeMean(false);
    statistics.setComputeStandardDeviation(false);
    statistics.setComputeVariance(true);
    statistics.setComputeMedian(false);
    statistics.setComputeRMS(false);
    signalStatsStruct stats = statistics.computeSignalStatistics(data.data(), {0, 4}, MinMaxLastMaximum);
    EXPECT_EQ(10.0, stats.peakToPeak);  // runs for its own flag and leaves the two values
    EXPECT_EQ(5.0, stats.mean);         // the variance asks for it
    EXPECT_DOUBLE_EQ(56.0 / 3.0, stats.variance);
    for (const double off : {stats.yMax, stats.xMin, stats.median, stats.rms}) {
        EXPECT_EQ(0.0, off);
    }

    // With the mean group invalid the variance is taken about the mean that is there: 5 from the call before.
    statistics.getStats().meanValid = false;
    stats = statistics.computeSignalStatistics(Values{7, 7}.data(), {0, 2}, MinMaxLastMaximum);
    EXPECT_EQ(5.0, stats.mean);
    EXPECT_EQ(8.0, stats.variance);
    statistics.getStats().varianceValid = false;
    statistics.getStats().minMaxValid = false;
    stats = statistics.computeSignalStatistics(data.data(), {0, 4}, MinMaxLastMaximum);
    EXPECT_EQ(8.0, stats.variance);
    EXPECT_EQ(0.0, stats.peakToPeak);
    stats = statistics.computeSignalStatistics(nullptr, {3, 3}, MinMaxLastMaximum);
    EXPECT_EQ(8.0, stats.variance);
}

}  // namespace
