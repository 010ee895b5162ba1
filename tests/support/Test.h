#pragma once

// What nearly every test needs: GoogleTest, the usual headers of the standard library, and short names.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dspwavedecks {}

namespace testsupport {

using Values = std::vector<double>;

/// So many numbers, each by a step above the one before.
inline Values ramp(double first, std::size_t count, double step = 1.0) {
    Values values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = first + step * static_cast<double>(i);
    }
    return values;
}

/// Numbers of a normal distribution.
inline Values gaussianNoise(std::size_t count, unsigned seed, double deviation = 1.0) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal(0.0, deviation);
    Values values(count);
    std::generate(values.begin(), values.end(), [&] { return normal(random); });
    return values;
}

/// So many of the values, from a place on.
inline Values part(const Values& values, std::size_t first, std::size_t count) {
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return Values(begin, begin + static_cast<std::ptrdiff_t>(count));
}

inline void append(Values& to, const Values& values) {
    to.insert(to.end(), values.begin(), values.end());
}

/// One row behind the other.
inline Values joined(const std::vector<Values>& rows) {
    Values values;
    for (const Values& row : rows) {
        append(values, row);
    }
    return values;
}

/// Compares numbers, which may be infinite or NaN, with a tolerance relative to the larger of 1 and what is expected.
inline void expectValues(const Values& values, const Values& expected, double tolerance = 0.0) {
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const bool isClose = std::isfinite(expected[i]) &&
                             std::abs(values[i] - expected[i]) <= tolerance * std::max(1.0, std::abs(expected[i]));
        EXPECT_TRUE(isClose || values[i] == expected[i] || (std::isnan(values[i]) && std::isnan(expected[i])))
            << "value " << i << ": " << values[i] << ", expected " << expected[i];
    }
}

/// 10 * log10 of a ratio of powers.
inline double decibels(double ratio) {
    return 10.0 * std::log10(ratio);
}

}  // namespace testsupport

// In the unnamed namespace, which is that of the test's own source: <cmath> has a nan in the global one.
namespace {

using namespace dspwavedecks;
using namespace testsupport;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace
