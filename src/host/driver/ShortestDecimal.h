#pragma once

#include <cstdint>

namespace wavedeck::driver {

/// A decimal number: digits * 10^exponent.
struct Decimal {
    std::uint64_t digits;
    int exponent;
};

/// The decimal number with the fewest digits that reads back as the given double; of several, the closest to it. At
/// most 17 digits; trailing zeros may stand in them. The Schubfach method: R. Giulietti, The Schubfach way to render
/// doubles, 2020: scale the bounds of the rounding interval by a power of ten of 128 bits, rounding to odd, and look
/// for a multiple of ten between them, then for one unit. value  finite, above zero
Decimal shortestDecimal(double value);

}  // namespace wavedeck::driver
