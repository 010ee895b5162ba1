// The kernels for each instruction set against their one-line versions, at lengths around those of vectors.

#include "SpanKernels.h"

#include "Test.h"

namespace {

Values valuesOf(std::size_t count, bool odd) {
    std::mt19937 random(static_cast<unsigned>(count));
    const double oddValues[] = {nan, INFINITY, -INFINITY, 0.0, 1e308};
    Values values;
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(odd && random() % 20 == 0 ? oddValues[random() % 5]
                                                   : static_cast<double>(random() % 1001) / 100);
    }
    return values;
}

void expectPlain(const SpanKernels& kernels, Values values) {
    const std::size_t count = values.size();
    ScannedExtremes expected{INFINITY, -INFINITY, false};
    // Multiples of 0.1 in a range of 10: each second value lies on the border of a bin.
    std::vector<std::uint64_t> bins(count + 1, 1234);
    kernels.findHistogramBins(values.data(), count, 0.0, 10.0, bins.data());
    EXPECT_EQ(bins[count], 1234u);
    const auto find = [&values](auto condition) {
        return std::find_if(values.begin(), values.end(), condition) - values.begin();
    };
    for (const double x : values) {
        EXPECT_EQ(kernels.findAbove(values.data(), count, x), find([x](double y) { return y > x; }));
        EXPECT_EQ(kernels.findBelow(values.data(), count, x), find([x](double y) { return y < x; }));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        expected.minimum = x < expected.minimum ? x : expected.minimum;
        expected.maximum = x > expected.maximum ? x : expected.maximum;
        expected.hasNaN = expected.hasNaN || std::isnan(x);
        const double bin = std::ceil((x - 0.0) * 100 / 10.0) - 1;
        EXPECT_EQ(static_cast<double>(bins[i]), bin >= 0 && std::isfinite(bin) ? std::min(bin, 99.0) : 0.0) << x;
    }
    // On a border, beside it and in between: the bins without divisions are those of the division.
    Values inside(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double border = 0.1 * static_cast<double>(i * i % 100);
        inside[i] = i % 3 == 0 ? border : i % 3 == 1 ? std::nextafter(border, 5.0) : border + 0.03;
    }
    std::vector<std::uint64_t> quick(count);
    bins.resize(count);
    kernels.findHistogramBins(inside.data(), count, 0.0, 10.0, bins.data());
    kernels.findHistogramBinsInRange(inside.data(), count, 0.0, 10.0, quick.data());
    EXPECT_EQ(quick, bins);
    for (const double sign : {1.0, -1.0}) {
        if (count < edgeSamples) {
            continue;
        }
        const EdgeLevels levels{sign, sign * values[0], sign * values[1], sign * values[2], sign * values[3]};
        const EdgeBits edge = kernels.compareEdge(values.data(), levels);
        for (std::size_t i = edge.inState >> edgeSamples / 2 ? edgeSamples / 2 : 0; i < edgeSamples; ++i) {
            const double x = sign * values[i];
            const std::uint64_t all[] = {edge.inState, edge.beforeStart, edge.notPastMid, edge.pastMid, edge.pastEnd};
            const bool plain[] = {x < levels.state, x < levels.start, x <= levels.mid, levels.mid < x, levels.end < x};
            for (std::size_t bits = 0; bits < std::size(all); ++bits) {
                EXPECT_EQ((all[bits] >> i & 1) != 0, plain[bits]) << bits;
            }
        }
    }
    const auto expectExtremes = [&expected](const ScannedExtremes& extremes) {
        EXPECT_EQ(extremes.minimum, expected.minimum);
        EXPECT_EQ(extremes.maximum, expected.maximum);
        EXPECT_EQ(extremes.hasNaN, expected.hasNaN);
    };
    expectExtremes(kernels.scanExtremes(values.data(), count));
    if (count <= edgeSamples) {
        Values longer = values;
        longer.resize(edgeSamples, nan);
        expectExtremes(kernels.scanFew(longer.data(), count));
    }
    if (!expected.hasNaN && count > 1) {
        std::sort(values.begin(), values.end());
        EXPECT_TRUE(kernels.neverFalls(values.data(), count));
        values[count / 2] = values[0] - 1.0;
        EXPECT_FALSE(kernels.neverFalls(values.data(), count));
    }
}

TEST(SpanKernels, agreeWithTheirPlainVersions) {
    for (const InstructionSet set : {InstructionSet::portable, InstructionSet::avx2}) {
        for (std::size_t count = 0; count < 70 && isSupported(set); ++count) {
            expectPlain(spanKernels(set), valuesOf(count, false));
            expectPlain(spanKernels(set), valuesOf(count, true));
        }
    }
}

}  // namespace
