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

/// 10 * log10 of a ratio of powers.
inline double decibels(double ratio) {
    return 10.0 * std::log10(ratio);
}

}  // namespace testsupport

// In the unnamed namespace, which is that of the test's own source: <cmath> has a nan in the global one.
namespace {

using namespace dspwavedecks;
using namespace testsupport;
using Values = std::vector<double>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace
