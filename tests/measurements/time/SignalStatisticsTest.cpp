#include "SignalStatistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "ExtremeScan.h"
#include "MedianSelection.h"

namespace dspwavedecks {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

std::vector<double> samples(std::size_t count, double offset) {
    std::vector<double> values(count);
    std::uint64_t state = 12345;
    for (double& value : values) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        value = static_cast<double>(state >> 11) / 0x1p50 + offset;
    }
    return values;
}

std::uint64_t bits(double value) {
    std::uint64_t result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

void expectRelative(double expected, double actual) {
    EXPECT_LE(std::fabs(actual - expected), 1e-12 * std::fabs(expected)) << expected << " vs " << actual;
}

struct Reference {
    std::size_t count;
    double offset, mean, variance, median, meanSquare;
};

// The bound is that of a sum of 65536 terms of one magnitude: eps * sqrt(N) = 6e-14, and room for the small means.
TEST(SignalStatistics, agreesWithAnIndependentImplementation) {
    const Reference references[] = {
#include "signal_statistics_vectors.inc"
    };
    for (const Reference& reference : references) {
        SCOPED_TRACE(reference.count);
        std::vector<double> data = samples(reference.count, reference.offset);
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

TEST(SignalStatistics, tiesGoByTheOrder) {
    struct Row {
        std::vector<double> data;
        std::size_t minimum, lastMaximum, firstMaximum;
    };
    const Row rows[] = {
        {{3, 1, 3}, 1, 2, 0},
        {{3, 3, 1, 1}, 2, 1, 0},
        {{5}, 0, 0, 0},
        {{2, 2, 2, 2, 2}, 0, 4, 0},
        {{1, 7, 0, 7, 0, 7, 3, 0, 7, 2, 7, 1, 0, 4, 7, 5, 0, 6}, 2, 14, 1},
    };
    for (const Row& row : rows) {
        const ExtremePositions last = findExtremes(row.data.data(), row.data.size(), MinMaxLastMaximum);
        const ExtremePositions first = findExtremes(row.data.data(), row.data.size(), MinMaxFirstMaximum);
        EXPECT_EQ(row.minimum, last.minimum);
        EXPECT_EQ(row.lastMaximum, last.maximum);
        EXPECT_EQ(row.minimum, first.minimum);
        EXPECT_EQ(row.firstMaximum, first.maximum);
    }
}

// The plain scans are the oracle, over data that is full of ties, special values and odd lengths.
TEST(SignalStatistics, extremesAndMedianKeepTheBitsOfThePlainScans) {
    const std::vector<double> alphabets[] = {
        {-1, 0, 1, 2},
        {-0.0, 0.0},
        {-0.0, 0.0, 1, -1},
        {0.5, nan, -0.5, 2},
        {infinity, -infinity, 0, 1},
        {nan, nan, nan, nan},
        {7},
        {},
    };
    std::vector<double> scratch;
    std::uint64_t state = 1;
    for (const std::size_t count : {1u, 2u, 7u, 8u, 9u, 511u, 4095u, 4096u, 4097u, 9001u}) {
        for (const std::vector<double>& alphabet : alphabets) {
            std::vector<double> data = samples(count, -4.0);
            for (double& value : data) {
                state = state * 6364136223846793005u + 1442695040888963407u;
                value = alphabet.empty() ? value : alphabet[(state >> 33) % alphabet.size()];
            }
            const auto [minimum, maximum] = std::minmax_element(data.begin(), data.end());
            const ExtremePositions last = findExtremes(data.data(), count, MinMaxLastMaximum);
            EXPECT_EQ(minimum - data.begin(), static_cast<std::ptrdiff_t>(last.minimum));
            EXPECT_EQ(maximum - data.begin(), static_cast<std::ptrdiff_t>(last.maximum));
            const ExtremePositions first = findExtremes(data.data(), count, MinMaxFirstMaximum);
            EXPECT_EQ(std::min_element(data.begin(), data.end()) - data.begin(),
                      static_cast<std::ptrdiff_t>(first.minimum));
            EXPECT_EQ(std::max_element(data.begin(), data.end()) - data.begin(),
                      static_cast<std::ptrdiff_t>(first.maximum));

            std::vector<double> copy = data;
            const auto lower = copy.begin() + static_cast<std::ptrdiff_t>((count - 1) / 2);
            const auto upper = copy.begin() + static_cast<std::ptrdiff_t>(count / 2);
            std::nth_element(copy.begin(), lower, copy.end());
            std::nth_element(lower, upper, copy.end());
            const double expected = (*lower + *upper) * 0.5;
            const double actual = selectMedian(data.data(), count, scratch);
            EXPECT_TRUE(std::isnan(expected) ? std::isnan(actual) : bits(expected) == bits(actual))
                << expected << " vs " << actual << ", " << count << " samples";
        }
    }
}

TEST(SignalStatistics, medianSurvivesABracketThatMisses) {
    // Sorted, constant but for the middle, and two-valued data: brackets of every width, ranks on their edges.
    std::vector<double> scratch;
    for (const std::size_t count : {4096u, 8191u, 100000u}) {
        std::vector<double> ramp(count);
        for (std::size_t i = 0; i < count; ++i) {
            ramp[i] = static_cast<double>(i);
        }
        EXPECT_EQ(static_cast<double>(count - 1) / 2.0, selectMedian(ramp.data(), count, scratch));
        std::vector<double> step(count, -1.0);
        std::fill(step.begin() + static_cast<std::ptrdiff_t>(count / 2), step.end(), 1.0);
        EXPECT_EQ(count % 2 == 0 ? 0.0 : 1.0, selectMedian(step.data(), count, scratch));
        std::vector<double> spike(count, 2.0);
        spike[count / 2] = 1e300;
        EXPECT_EQ(2.0, selectMedian(spike.data(), count, scratch));
    }
}

TEST(SignalStatistics, settingsAndFlagsDecideWhatIsWritten) {
    const std::vector<double> data = {1, 5, 3, 11};
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
    EXPECT_EQ(0.0, stats.yMax);
    EXPECT_EQ(0.0, stats.xMin);
    EXPECT_EQ(5.0, stats.mean);  // the variance asks for it
    EXPECT_DOUBLE_EQ(56.0 / 3.0, stats.variance);
    EXPECT_EQ(0.0, stats.median);
    EXPECT_EQ(0.0, stats.rms);

    // With the mean group invalid the variance is taken about the mean that is there: 5 from the call before.
    statistics.getStats().meanValid = false;
    stats = statistics.computeSignalStatistics(std::vector<double>{7, 7}.data(), {0, 2}, MinMaxLastMaximum);
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
}  // namespace dspwavedecks
