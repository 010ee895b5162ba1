#pragma once

#include <array>
#include <bit>
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

__extension__ using Wide = unsigned __int128;

/// A natural number below 2^1216, limbs of 64 bits, the least significant first.
class Limbs {
public:
    explicit constexpr Limbs(std::size_t limb) { limbs_[limb] = 1; }

    constexpr void multiplyByTen() {
        std::uint64_t carry = 0;
        for (std::uint64_t& limb : limbs_) {
            const Wide product = static_cast<Wide>(limb) * 10 + carry;
            limb = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64U);
        }
    }

    /// Rounds down.
    constexpr void divideByTen() {
        std::uint64_t rest = 0;
        for (std::size_t i = count; i-- > 0;) {
            const Wide part = (static_cast<Wide>(rest) << 64U) | limbs_[i];
            limbs_[i] = static_cast<std::uint64_t>(part / 10);
            rest = static_cast<std::uint64_t>(part % 10);
        }
    }

    /// The leading 128 bits, one more if anything follows them or is said to be missing behind the last limb.
    constexpr LeadingBits leadingBits(bool isRoundedDown) const {
        std::size_t top = count - 1;
        while (limbs_[top] == 0) {
            --top;
        }
        const auto shift = static_cast<unsigned>(64 - std::bit_width(limbs_[top]));
        const auto at = [&](std::size_t back) { return top >= back ? limbs_[top - back] : 0; };
        const auto shifted = [&](std::size_t back) {
            const auto pair = (static_cast<Wide>(at(back)) << 64U) | at(back + 1);
            return static_cast<std::uint64_t>(pair >> (64U - shift));
        };
        bool anyBehind = isRoundedDown || (at(2) << shift) != 0;
        for (std::size_t back = 3; back <= top; ++back) {
            anyBehind = anyBehind || at(back) != 0;
        }
        const LeadingBits bits{shifted(0), shifted(1)};
        const std::uint64_t next = bits.low + 1;
        return anyBehind ? LeadingBits{next == 0 ? bits.high + 1 : bits.high, next} : bits;
    }

private:
    static constexpr std::size_t count = 19;
    std::array<std::uint64_t, count> limbs_{};
};

/// floor(log2(10^exponent)), exact over the range of the table.
constexpr int floorLog2OfPowerOfTen(int exponent) {
    return (exponent * 1741647) >> 19;
}

/// Entry i is 10^(i + leastPowerOfTen).
constexpr auto makePowersOfTen() {
    std::array<LeadingBits, greatestPowerOfTen - leastPowerOfTen + 1> powers{};
    const auto zero = static_cast<std::size_t>(-leastPowerOfTen);
    Limbs positive(0);  // 1
    for (std::size_t i = zero; i < powers.size(); ++i) {
        powers[i] = positive.leadingBits(false);
        positive.multiplyByTen();
    }
    // Rounding down ten times by ten is rounding down once by their product; 182 bits are left of the last one.
    Limbs negative(18);  // 2^1152, which stands for 1
    for (std::size_t i = zero; i-- > 0;) {
        negative.divideByTen();
        powers[i] = negative.leadingBits(true);
    }
    return powers;
}

}  // namespace detail

}  // namespace wavedeck::driver
