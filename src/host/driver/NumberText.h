#pragma once

#include <cstddef>

#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// Room that writeNumber() needs.
constexpr std::size_t longestNumberText = 32;

/// Writes the shortest decimal text that reads back as the same double, laid out as Poco lays it out: decimal for
/// decimal exponents from -15 up to and including 14 ("0.001", "-0", "123456"), else with exponent ("1.5e20",
/// "5e-324"). JSON has no other numbers: NaN and infinities become "null". target  room for longestNumberText
/// characters; no terminating NUL is written returns one past the last character
WAVEDECK_API char* writeNumber(double value, char* target);

}  // namespace wavedeck::driver
