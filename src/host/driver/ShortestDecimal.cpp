#include "ShortestDecimal.h"

#include <bit>
#include <cstddef>

#include "PowersOfTen.h"

namespace wavedeck::driver {

namespace {

constexpr auto powersOfTen = detail::makePowersOfTen();
static_assert(powersOfTen[-leastPowerOfTen].high == std::uint64_t{1} << 63 && powersOfTen[-leastPowerOfTen].low == 0);
static_assert(powersOfTen[0].high >> 63 == 1 && powersOfTen.back().high >> 63 == 1);

constexpr int significandBits = 52;
constexpr std::uint64_t hiddenBit = std::uint64_t{1} << significandBits;
constexpr int exponentBias = 1075;

/// floor(log10(2^exponent)), or of three quarters of that power where the interval below the number is half as wide.
int floorLog10OfPowerOfTwo(int exponent, bool threeQuarters) {
    return (exponent * 1262611 - (threeQuarters ? 524031 : 0)) >> 22;
}

/// power * factor / 2^128, its last bit set if anything was cut off.
std::uint64_t multiplyToOdd(const LeadingBits& power, std::uint64_t factor) {
    const detail::Wide low = static_cast<detail::Wide>(power.low) * factor;
    const detail::Wide product =
        static_cast<detail::Wide>(power.high) * factor + static_cast<std::uint64_t>(low >> 64U);
    const auto cut = static_cast<std::uint64_t>(product);
    return static_cast<std::uint64_t>(product >> 64U) | (cut > 1 ? 1U : 0U);
}

}  // namespace

Decimal shortestDecimal(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t fraction = bits & (hiddenBit - 1);
    const auto biased = static_cast<int>(bits >> significandBits);
    const std::uint64_t significand = biased == 0 ? fraction : fraction | hiddenBit;
    const int exponent = (biased == 0 ? 1 : biased) - exponentBias;
    // The number below a power of two is half as far away as the one above.
    const bool lowerIsCloser = fraction == 0 && biased > 1;

    const int k = floorLog10OfPowerOfTwo(exponent, lowerIsCloser);
    const int shift = exponent + detail::floorLog2OfPowerOfTen(-k) + 1;
    const LeadingBits& power = powersOfTen[static_cast<std::size_t>(-k - leastPowerOfTen)];
    // Four times the number and the bounds of what rounds to it, in units of 10^k.
    const std::uint64_t lowerBound = multiplyToOdd(power, (4 * significand - 2 + (lowerIsCloser ? 1 : 0)) << shift);
    const std::uint64_t number = multiplyToOdd(power, (4 * significand) << shift);
    const std::uint64_t upperBound = multiplyToOdd(power, (4 * significand + 2) << shift);
    const std::uint64_t isOdd = significand & 1U;  // the bounds themselves round to an even significand
    const std::uint64_t lower = lowerBound + isOdd;
    const std::uint64_t upper = upperBound - isOdd;

    const std::uint64_t units = number / 4;
    if (units >= 10) {
        const std::uint64_t tens = units / 10;
        const bool belowIsInside = lower <= 40 * tens;
        const bool aboveIsInside = 40 * tens + 40 <= upper;
        if (belowIsInside != aboveIsInside) {
            return {tens + (aboveIsInside ? 1 : 0), k + 1};
        }
    }
    const bool belowIsInside = lower <= 4 * units;
    const bool aboveIsInside = 4 * units + 4 <= upper;
    if (belowIsInside != aboveIsInside) {
        return {units + (aboveIsInside ? 1 : 0), k};
    }
    const std::uint64_t middle = 4 * units + 2;
    const bool roundsUp = number > middle || (number == middle && (units & 1U) != 0);
    return {units + (roundsUp ? 1 : 0), k};
}

}  // namespace wavedeck::driver
