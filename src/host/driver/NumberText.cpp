#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace wavedeck::driver {

namespace {

constexpr double leastDecimal = 1e-15;
constexpr double firstExponential = 1e15;

/// Takes the leading zero of an exponent below 10 away: "5e-05" becomes "5e-5".
char* trimExponent(char* last) {
    const bool hasTwoDigits = last[-3] == '+' || last[-3] == '-';
    if (hasTwoDigits && last[-2] == '0') {
        last[-2] = last[-1];
        return last - 1;
    }
    return last;
}

}  // namespace

char* writeNumber(double value, char* target) {
    char* const end = target + longestNumberText;
    const double magnitude = std::fabs(value);
    // Shortest digits never round across a power of ten that is itself a double, so magnitude and exponent agree.
    if (magnitude >= leastDecimal && magnitude < firstExponential) {
        return std::to_chars(target, end, value, std::chars_format::fixed).ptr;
    }
    if (value == 0.0) {
        *target = '0';
        return target + 1;
    }
    if (!std::isfinite(value)) {
        std::memcpy(target, "null", 4);
        return target + 4;
    }
    return trimExponent(std::to_chars(target, end, value, std::chars_format::scientific).ptr);
}

}  // namespace wavedeck::driver
