#pragma once

#include <cstddef>

#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// Room that writeNumber() needs: a text has 34 characters at most, and copies of fixed length reach behind it.
constexpr std::size_t longestNumberText = 48;

/// Writes the shortest decimal text that reads back as the same double, laid out as Poco lays it out: decimal for
/// decimal exponents from -15 up to and including 14 ("0.001", "123456"), else with an exponent ("1.5e+20", "5e-324");
/// zero of either sign is "0". JSON has no other numbers: NaN and infinities become "null".
/// target  room for longestNumberText characters; no terminating NUL is written
/// returns one past the last character
WAVEDECK_API char* writeNumber(double value, char* target);

}  // namespace wavedeck::driver
