#include <bit>

#include "AlignedVector.h"
#include "ScalarFormulas.h"
#include "Test.h"
#include "VectorKernels.h"
#include "VectorMath.h"

namespace {

using namespace scalar_formulas;
using vectormath::smallestPower;
using vectormath::VectorKernels;

double lastPlace(double x) {
    return std::nextafter(std::abs(x), infinity) - std::abs(x);
}

bool isSame(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

class Kernels : public testing::TestWithParam<InstructionSet> {
protected:
    void SetUp() override {
        if (!isSupported(GetParam())) {
            GTEST_SKIP() << "not on this machine";
        }
    }
    double uniform(double low, double high) { return std::uniform_real_distribution(low, high)(random_); }

    const VectorKernels& kernels_ = vectormath::kernelsFor(GetParam());
    std::mt19937_64 random_{5};
};

TEST_P(Kernels, DecibelsKeepTheirErrorBoundOverTheWholeRange) {
    Values power;
    for (int i = 0; i < 300000; ++i) {
        power.push_back(std::bit_cast<double>(random_() % std::bit_cast<std::uint64_t>(infinity)));  // any exponent
        power.push_back(std::pow(10.0, uniform(-10, 10)));
        power.push_back(1 + uniform(-0.5, 0.5) * std::exp2(-uniform(0, 52)));  // the level crosses zero
    }
    Values level(power.size());
    kernels_.toDecibels(power.data(), level.data(), power.size(), 0, 0);
    double worst = 0;
    for (std::size_t i = 0; i < power.size(); ++i) {
        const long double expected = 10 * std::log10(static_cast<long double>(power[i]));
        const auto error = static_cast<double>(std::abs(level[i] - expected));
        worst = std::max(worst, error / std::max(2e-14, lastPlace(static_cast<double>(expected))));
        ASSERT_FALSE(std::isnan(level[i])) << power[i];
    }
    EXPECT_LE(worst, 1);
}

TEST_P(Kernels, DecibelsOfSpecialValuesAreExact) {
    const double smallestNormal = std::numeric_limits<double>::min();
    const Values power{0.0, -0.0, infinity, nan, -1.0, -infinity, -smallestPower, 1.0, 100.0, 1e15};
    const Values expected{-infinity, -infinity, infinity, nan, nan, nan, nan, 0, 20, 150};
    for (std::size_t i = 0; i < power.size(); ++i) {
        // The neighbours take the usual way through the same vector.
        const Values mixed{10.0, power[i], smallestNormal, 1000.0, power[i]};
        Values level(5);
        kernels_.toDecibels(mixed.data(), level.data(), 5, 0, 0);
        EXPECT_TRUE(isSame(level[1], expected[i]) && isSame(level[4], expected[i])) << power[i] << " " << level[1];
        EXPECT_EQ(level[0], 10);
        EXPECT_EQ(level[3], 30);
    }
    double level = 0;
    const double nothing = 0;
    kernels_.toDecibels(&nothing, &level, 1, 30, smallestPower);
    EXPECT_NEAR(level, 30 - 10 * 1074 * std::log10(2.0), 1e-12);
    const double aboveFullScale = 25;
    kernels_.rootToDecibels(&aboveFullScale, &level, 1, 2, 0, 0, smallestPower);
    EXPECT_EQ(level, 0);
    kernels_.rootToDecibels(&nan, &level, 1, 2, 0, 0, smallestPower);
    EXPECT_TRUE(std::isnan(level));
}

TEST_P(Kernels, PowersOfTenKeepTheirErrorBoundOverTheWholeRange) {
    Values level;
    for (int i = 0; i < 200000; ++i) {
        level.push_back(uniform(-3240, 3090));
        level.push_back(uniform(-100, 100));
        level.push_back(std::exp2(-uniform(0, 60)));
    }
    Values power(level.size());
    kernels_.fromDecibels(level.data(), power.data(), level.size(), 0);
    Values square(level.size());
    kernels_.squareFromDecibels(level.data(), square.data(), level.size(), 0, 1);
    double worst = 0;
    double worstSquare = 0;
    for (std::size_t i = 0; i < level.size(); ++i) {
        const long double expected = std::pow(10.0L, static_cast<long double>(level[i] / 10));
        if (expected >= std::numeric_limits<double>::max()) {
            EXPECT_EQ(power[i], infinity) << level[i];
            continue;
        }
        const double unit = lastPlace(static_cast<double>(expected));
        worst = std::max(worst, static_cast<double>(std::abs(power[i] - expected)) / unit);
        const long double amplitude = std::pow(10.0L, static_cast<long double>(level[i] / 20));
        worstSquare = std::max(worstSquare, static_cast<double>(std::abs(square[i] - amplitude * amplitude)) / unit);
    }
    EXPECT_LE(worst, 2);
    EXPECT_LE(worstSquare, 5);
    const Values special{infinity, -infinity, nan, 4000, -4000, 0, 30, 1e300, -1e300};
    const Values expected{infinity, 0, nan, infinity, 0, 1, 1000, infinity, 0};
    Values result(special.size());
    kernels_.fromDecibels(special.data(), result.data(), special.size(), 0);
    for (std::size_t i = 0; i < special.size(); ++i) {
        EXPECT_TRUE(isSame(result[i], expected[i])) << special[i] << " gives " << result[i];
    }
}

/// One call of every kernel on arrays that begin `offset` doubles behind a cache line, with a guard behind each.
class EveryLengthAndAddress : public Kernels {
protected:
    using Array = AlignedVector<double>;
    static constexpr double guard = -12345;

    Array makeArray(std::size_t size, std::size_t offset) {
        constexpr double odd[] = {0.0, -0.0, infinity, -infinity, nan, 1e-310, 1e308, -2.5};
        Array array(offset + size + 1, guard);
        for (std::size_t i = 0; i < size; ++i) {
            array[offset + i] = random_() % 5 == 0 ? odd[random_() % 8] : uniform(-2, 2);
        }
        return array;
    }

    /// Compares element by element; `tolerance` 0 asks for the same bits.
    template <class Expected>
    void expectAll(const Array& array, std::size_t offset, double tolerance, Expected&& expected) {
        const std::size_t size = array.size() - offset - 1;
        for (std::size_t i = 0; i < size; ++i) {
            const double value = array[offset + i];
            const double wanted = expected(i);
            const bool close = std::abs(value - wanted) <= tolerance * std::max(1.0, std::abs(wanted));
            EXPECT_TRUE(isSame(value, wanted) || (tolerance > 0 && (close || value == wanted)))
                << "element " << i << " of " << size << " at " << offset << ": " << value << ", not " << wanted;
        }
        EXPECT_EQ(array.back(), guard) << size;
    }

    void checkLogarithmsAndRoots(std::size_t n, std::size_t offset) {
        constexpr double tolerance = 1e-14;  // the bounds proper are asserted above
        const Array x = makeArray(n, offset);
        const auto at = [&](std::size_t i) { return x[offset + i]; };
        Array y = x;  // in place
        kernels_.toDecibels(&y[offset], &y[offset], n, 30, smallestPower);
        expectAll(y, offset, tolerance, [&](std::size_t i) { return toDecibels(at(i), 30, smallestPower); });
        y = x;
        kernels_.rootToDecibels(&x[offset], &y[offset], n, 1.5, 120, 125, smallestPower);
        expectAll(y, offset, tolerance,
                  [&](std::size_t i) { return rootToDecibels(at(i), 1.5, 120, 125, smallestPower); });
        y = x;
        kernels_.fromDecibels(&x[offset], &y[offset], n, 3);
        expectAll(y, offset, tolerance, [&](std::size_t i) { return fromDecibels(at(i), 3); });
        y = x;
        kernels_.squareFromDecibels(&x[offset], &y[offset], n, 3, 50);
        expectAll(y, offset, tolerance, [&](std::size_t i) { return squareFromDecibels(at(i), 3, 50); });
        y = x;
        kernels_.squareRoots(&y[offset], &y[offset], n);
        expectAll(y, offset, 0, [&](std::size_t i) { return std::sqrt(at(i)); });
    }

    void checkSpectra(std::size_t n, std::size_t offset) {
        const Array samples = makeArray(2 * n, offset);
        const Array window = makeArray(n, 0);
        Array spectrum = makeArray(2 * n, 1);
        kernels_.windowReal(&samples[offset], window.data(), &spectrum[1], n);
        expectAll(spectrum, 1, 0,
                  [&](std::size_t i) { return i % 2 == 0 ? samples[offset + i / 2] * window[i / 2] : 0.0; });
        kernels_.windowComplex(&samples[offset], window.data(), &spectrum[1], n);
        expectAll(spectrum, 1, 0, [&](std::size_t i) { return samples[offset + i] * window[i / 2]; });
        Array power = makeArray(n, offset);
        kernels_.scaledPower(&samples[offset], 0.3, &power[offset], n);
        expectAll(power, offset, 0, [&](std::size_t i) { return scaledPower(&samples[offset], 0.3, i); });
    }

    void checkAverages(std::size_t n, std::size_t offset) {
        for (const bool useNonFinite : {false, true}) {
            Array row = makeArray(n, offset);
            Array mean = makeArray(n, 1);
            Array expected = row;
            Array expectedMean = mean;
            bool expectedFound = false;
            for (std::size_t i = 0; i < n; ++i) {
                expectedFound |= averageExponentially(expected[offset + i], expectedMean[1 + i], 0.3, useNonFinite);
            }
            EXPECT_EQ(kernels_.averageExponentially(&row[offset], &mean[1], n, 0.3, useNonFinite), expectedFound);
            expectAll(row, offset, 0, [&](std::size_t i) { return expected[offset + i]; });
            expectAll(mean, 1, 0, [&](std::size_t i) { return expectedMean[1 + i]; });

            const Array spectrum = makeArray(2 * n, offset);
            Array average = makeArray(n, 1);
            expectedMean = average;
            kernels_.scaledPower(&spectrum[offset], 1.7, &row[offset], n);
            const bool found = kernels_.averageExponentially(&row[offset], &expectedMean[1], n, 0.3, useNonFinite);
            EXPECT_EQ(kernels_.averagePower(&spectrum[offset], 1.7, &average[1], n, 0.3, useNonFinite), found);
            expectAll(average, 1, 0, [&](std::size_t i) { return expectedMean[1 + i]; });
        }
        const Array row = makeArray(n, offset);
        const Array before = makeArray(n, 1);
        Array held = before;
        kernels_.holdMaximum(&row[offset], &held[1], n);
        expectAll(held, 1, 0, [&](std::size_t i) { return holdMaximum(row[offset + i], before[1 + i]); });
        held = before;
        kernels_.holdMinimum(&row[offset], &held[1], n);
        expectAll(held, 1, 0, [&](std::size_t i) { return holdMinimum(row[offset + i], before[1 + i]); });
    }
};

TEST_P(EveryLengthAndAddress, EqualsThePlainFormula) {
    for (const std::size_t n : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 15U, 16U, 17U, 127U, 128U, 129U}) {
        for (const std::size_t offset : {0U, 1U, 2U, 3U, 5U}) {
            checkLogarithmsAndRoots(n, offset);
            checkSpectra(n, offset);
            checkAverages(n, offset);
        }
    }
}

constexpr InstructionSet allSets[] = {InstructionSet::portable, InstructionSet::avx2, InstructionSet::avx512};
const auto nameOfSet = [](const testing::TestParamInfo<InstructionSet>& info) {
    return info.param == InstructionSet::avx512 ? "Avx512" : info.param == InstructionSet::avx2 ? "Avx2" : "Portable";
};
INSTANTIATE_TEST_SUITE_P(Sets, Kernels, testing::ValuesIn(allSets), nameOfSet);
INSTANTIATE_TEST_SUITE_P(Sets, EveryLengthAndAddress, testing::ValuesIn(allSets), nameOfSet);

TEST(VectorMath, HandsItsArgumentsToTheKernels) {
    const double two[] = {2, 3, 5, 7};
    double out[4]{};
    vectormath::toDecibels(two, out, 1, 1);
    EXPECT_NEAR(out[0], 1 + 10 * std::log10(2.0), 1e-14);
    vectormath::rootToDecibels(two, out, 1, 4, 120);
    EXPECT_NEAR(out[0], 120 - 10 * std::log10(8.0), 1e-13);
    vectormath::squareFromDecibels(two, out, 1, 1, 50);
    EXPECT_NEAR(out[0], std::pow(10.0, 0.1) / 50, 1e-15);
    vectormath::windowComplex(two, two + 2, out, 1);
    EXPECT_EQ(out[1], 15);
    vectormath::scaledPower(two, 10, out, 2);
    EXPECT_EQ(out[1], 740);
    double row = 8;
    EXPECT_FALSE(vectormath::averageExponentially(&row, out, 1, 0.25, false));
    EXPECT_EQ(row, 2 + 0.75 * 130);
}

}  // namespace
