#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace wavedeck::driver {

/// The leading 128 bits of a power of ten, the first bit set, rounded up.
struct LeadingBits {
    std::uint64_t high;
    std::uint64_t low;
};

/// The powers that the decimal text of a double can need.
constexpr int leastPowerOfTen = -292;
constexpr int greatestPowerOfTen = 324;

namespace detail {

constexpr std::size_t numLimbs = 18;  // 2^(127 + 972), the greatest number divided, has 1100 bits

/// A natural number, least significant limb first.
using Limbs = std::array<std::uint64_t, numLimbs>;

__extension__ using Wide = unsigned __int128;

constexpr void multiply(Limbs& number, std::uint64_t factor) {
    std::uint64_t carry = 0;
    for (std::uint64_t& limb : number) {
        const Wide product = static_cast<Wide>(limb) * factor + carry;
        limb = static_cast<std::uint64_t>(product);
        carry = static_cast<std::uint64_t>(product >> 64U);
    }
}

constexpr void divide(Limbs& number, std::uint64_t divisor) {
    std::uint64_t rest = 0;
    for (std::size_t i = numLimbs; i-- > 0;) {
        const Wide part = (static_cast<Wide>(rest) << 64U) | number[i];
        number[i] = static_cast<std::uint64_t>(part / divisor);
        rest = static_cast<std::uint64_t>(part % divisor);
    }
}

constexpr int bitLength(const Limbs& number) {
    for (std::size_t i = numLimbs; i-- > 0;) {
        for (int bit = 63; number[i] != 0 && bit >= 0; --bit) {
            if ((number[i] >> bit & 1U) != 0) {
                return static_cast<int>(64 * i) + bit + 1;
            }
        }
    }
    return 0;
}

/// The 64 bits that begin at bit `first`, which may be negative.
constexpr std::uint64_t bitsFrom(const Limbs& number, int first) {
    std::uint64_t bits = 0;
    for (int i = 0; i < 64; ++i) {
        const int bit = first + i;
        if (bit >= 0 && (number[static_cast<std::size_t>(bit / 64)] >> (bit % 64) & 1U) != 0) {
            bits |= std::uint64_t{1} << i;
        }
    }
    return bits;
}

constexpr bool anyBitBelow(const Limbs& number, int end) {
    for (int bit = 0; bit < end; ++bit) {
        if ((number[static_cast<std::size_t>(bit / 64)] >> (bit % 64) & 1U) != 0) {
            return true;
        }
    }
    return false;
}

constexpr LeadingBits roundedUp(std::uint64_t high, std::uint64_t low) {
    return {low + 1 == 0 ? high + 1 : high, low + 1};
}

constexpr LeadingBits leadingBits(const Limbs& number) {
    const int first = bitLength(number) - 128;
    const std::uint64_t high = bitsFrom(number, first + 64);
    const std::uint64_t low = bitsFrom(number, first);
    return anyBitBelow(number, first) ? roundedUp(high, low) : LeadingBits{high, low};
}

/// floor(log2(10^exponent)), exact over the range of the table.
constexpr int floorLog2OfPowerOfTen(int exponent) {
    return (exponent * 1741647) >> 19;
}

/// 10^-exponent: 2^n / 10^exponent with n such that the quotient has 128 bits. Never exact, so always rounded up.
constexpr LeadingBits leadingBitsOfInverse(int exponent) {
    const int n = 127 - floorLog2OfPowerOfTen(-exponent);
    Limbs number{};
    number[static_cast<std::size_t>(n / 64)] = std::uint64_t{1} << (n % 64);
    for (; exponent >= 18; exponent -= 18) {
        divide(number, 1000000000000000000U);
    }
    for (; exponent > 0; --exponent) {
        divide(number, 10);
    }
    return roundedUp(number[1], number[0]);
}

constexpr auto makePowersOfTen() {
    std::array<LeadingBits, greatestPowerOfTen - leastPowerOfTen + 1> powers{};
    for (int exponent = leastPowerOfTen; exponent < 0; ++exponent) {
        powers[static_cast<std::size_t>(exponent - leastPowerOfTen)] = leadingBitsOfInverse(-exponent);
    }
    Limbs number{1};
    for (int exponent = 0; exponent <= greatestPowerOfTen; ++exponent) {
        powers[static_cast<std::size_t>(exponent - leastPowerOfTen)] = leadingBits(number);
        multiply(number, 10);
    }
    return powers;
}

}  // namespace detail

}  // namespace wavedeck::driver
