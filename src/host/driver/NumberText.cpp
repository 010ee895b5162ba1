#include "NumberText.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "ShortestDecimal.h"

namespace wavedeck::driver {

namespace {

constexpr int leastDecimalExponent = -15;  // Poco's limits for text without an exponent
constexpr int firstLargeExponent = 15;
constexpr int mostDigits = 17;

/// "00" to "99".
constexpr auto digitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

constexpr auto smallPowers = [] {
    std::array<std::uint64_t, mostDigits + 1> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& entry : powers) {
        entry = power;
        power *= 10;
    }
    return powers;
}();

/// Digits of a value above zero.
int countDigits(std::uint64_t value) {
    const int atLeast = (static_cast<int>(std::bit_width(value)) * 1233) >> 12;  // times log10(2), rounded down
    return atLeast + (value >= smallPowers[static_cast<std::size_t>(atLeast)] ? 1 : 0);
}

/// Eight digits, zeros ahead where there are fewer.
void writeEight(std::uint32_t value, char* target) {
    const std::uint32_t left = value / 10000;
    const std::uint32_t right = value % 10000;
    std::memcpy(target, &digitPairs[2 * (left / 100)], 2);
    std::memcpy(target + 2, &digitPairs[2 * (left % 100)], 2);
    std::memcpy(target + 4, &digitPairs[2 * (right / 100)], 2);
    std::memcpy(target + 6, &digitPairs[2 * (right % 100)], 2);
}

/// The digits of a decimal, and room behind them for copies of fixed length: a copy of a length that the compiler knows
/// is one instruction or two, one of another length is a call.
class DigitText {
public:
    explicit DigitText(std::uint64_t digits) : count_(countDigits(digits)) {
        const std::uint64_t top = digits / 100000000;
        text_[0] = static_cast<char>('0' + top / 100000000);
        writeEight(static_cast<std::uint32_t>(top % 100000000), text_ + 1);
        writeEight(static_cast<std::uint32_t>(digits % 100000000), text_ + 9);
    }

    int count() const { return count_; }

    /// Copies the digits from the given one on, with what stands behind them.
    void copyFrom(int first, char* target) const {
        std::memcpy(target, text_ + mostDigits - count_ + first, roomCopied);
    }

    static constexpr std::size_t roomCopied = 24;

private:
    int count_;
    char text_[mostDigits + roomCopied] = {};
};

/// digits * 10^exponent without an exponent in the text.
char* writePlain(const DigitText& digits, int exponent, char* target) {
    const int point = digits.count() + exponent;  // digits ahead of the decimal point
    if (exponent >= 0) {
        digits.copyFrom(0, target);
        std::memcpy(target + digits.count(), "0000000000000000", 16);
        return target + point;
    }
    if (point <= 0) {
        std::memcpy(target, "0.00000000000000", 16);
        digits.copyFrom(0, target + 2 - point);
        return target + 2 - point + digits.count();
    }
    digits.copyFrom(0, target);
    target[point] = '.';
    digits.copyFrom(point, target + point + 1);
    return target + digits.count() + 1;
}

/// digits * 10^exponent with one digit ahead of the point and an exponent behind the digits.
char* writeWithExponent(const DigitText& digits, int exponent, char* target) {
    const int scientific = digits.count() + exponent - 1;
    digits.copyFrom(0, target);
    ++target;
    if (digits.count() > 1) {
        *target = '.';
        digits.copyFrom(1, target + 1);
        target += digits.count();
    }
    *target++ = 'e';
    *target++ = scientific < 0 ? '-' : '+';
    const int magnitude = std::abs(scientific);
    if (magnitude >= 100) {
        *target++ = static_cast<char>('0' + magnitude / 100);
    }
    if (magnitude >= 10) {
        *target++ = static_cast<char>('0' + magnitude / 10 % 10);
    }
    *target++ = static_cast<char>('0' + magnitude % 10);
    return target;
}

}  // namespace

char* writeNumber(double value, char* target) {
    if (!std::isfinite(value)) {
        std::memcpy(target, "null", 4);
        return target + 4;
    }
    if (value == 0.0) {
        *target = '0';
        return target + 1;
    }
    if (value < 0.0) {
        *target++ = '-';
    }
    auto [digits, exponent] = shortestDecimal(std::fabs(value));
    while (digits % 10 == 0) {
        digits /= 10;
        ++exponent;
    }
    const DigitText text(digits);
    const int scientific = text.count() + exponent - 1;
    if (scientific >= leastDecimalExponent && scientific < firstLargeExponent) {
        return writePlain(text, exponent, target);
    }
    return writeWithExponent(text, exponent, target);
}

}  // namespace wavedeck::driver
