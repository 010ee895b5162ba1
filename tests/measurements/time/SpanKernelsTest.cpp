// The kernels for each instruction set against their one-line versions, at lengths around those of vectors.
#include "SpanKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace dspwavedecks {
namespace {

std::vector<InstructionSet> supportedSets() {
    std::vector<InstructionSet> sets{InstructionSet::portable};
    if (isSupported(InstructionSet::avx2)) {
        sets.push_back(InstructionSet::avx2);
    }
    return sets;
}

std::vector<double> valuesOf(std::size_t count, bool odd, unsigned seed) {
    std::mt19937 random(seed);
    const double oddValues[] = {std::nan(""), std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(), 0.0, 1e308};
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
        const double value = static_cast<double>(random() % 1001) / 100.0;
        values.push_back(odd && random() % 20 == 0 ? oddValues[random() % 5] : value);
    }
    return values;
}

TEST(SpanKernels, agreeWithTheirPlainVersions) {
    for (const InstructionSet set : supportedSets()) {
        const SpanKernels& kernels = spanKernels(set);
        for (std::size_t count = 0; count < 70; ++count) {
            for (const bool odd : {false, true}) {
                std::vector<double> values = valuesOf(count, odd, static_cast<unsigned>(count));
                ScannedExtremes expected{INFINITY, -INFINITY, false};
                for (const double x : values) {
                    expected.minimum = x < expected.minimum ? x : expected.minimum;
                    expected.maximum = x > expected.maximum ? x : expected.maximum;
                    expected.hasNaN = expected.hasNaN || std::isnan(x);
                }
                const ScannedExtremes extremes = kernels.scanExtremes(values.data(), count);
                EXPECT_EQ(extremes.minimum, expected.minimum);
                EXPECT_EQ(extremes.maximum, expected.maximum);
                EXPECT_EQ(extremes.hasNaN, expected.hasNaN);

                // Multiples of 0.1 in a range of 10: each second value lies on the border of a bin.
                for (const double divisor : {10.0, std::numeric_limits<double>::epsilon()}) {
                    std::vector<std::uint64_t> bins(count + 1, 1234);
                    kernels.findHistogramBins(values.data(), count, 0.0, divisor, bins.data());
                    for (std::size_t i = 0; i < count; ++i) {
                        const double bin = std::ceil((values[i] - 0.0) * 100 / divisor) - 1;
                        const double capped = bin >= 0 && std::isfinite(bin) ? std::min(bin, 99.0) : 0.0;
                        EXPECT_EQ(static_cast<double>(bins[i]), capped) << values[i];
                    }
                    EXPECT_EQ(bins[count], 1234u);
                }

                EXPECT_EQ(kernels.neverFalls(values.data(), count),
                          std::adjacent_find(values.begin(), values.end(),
                                             [](double a, double b) { return !(a <= b); }) == values.end());
                if (!odd) {
                    std::sort(values.begin(), values.end());
                    EXPECT_TRUE(kernels.neverFalls(values.data(), count));
                    for (std::size_t i = 1; i < count; ++i) {
                        std::vector<double> falling = values;
                        falling[i] = falling[i - 1] - 1.0;
                        EXPECT_FALSE(kernels.neverFalls(falling.data(), count)) << count << " " << i;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace dspwavedecks
