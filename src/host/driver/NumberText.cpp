#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace wavedeck::driver {

namespace {

constexpr double leastDecimal = 1e-15;
constexpr double firstExponential = 1e15;

/// Turns "1.5e+20" and "5e-05" into "1.5e20" and "5e-5".
char* trimExponent(char* first, char* last) {
    auto* mark = static_cast<char*>(std::memchr(first, 'e', static_cast<std::size_t>(last - first)));
    char* target = mark + 1;
    const char* source = mark + 1;
    if (*source == '-') {
        ++target;
    }
    ++source;  // the sign, always there
    while (*source == '0' && source + 1 < last) {
        ++source;
    }
    const auto digits = static_cast<std::size_t>(last - source);
    std::memmove(target, source, digits);
    return target + digits;
}

}  // namespace

char* writeNumber(double value, char* target) {
    char* const end = target + longestNumberText;
    const double magnitude = std::fabs(value);
    // Shortest digits never round across a power of ten that is itself a double, so magnitude and exponent agree.
    if ((magnitude >= leastDecimal && magnitude < firstExponential) || value == 0.0) {
        return std::to_chars(target, end, value, std::chars_format::fixed).ptr;
    }
    if (!std::isfinite(value)) {
        std::memcpy(target, "null", 4);
        return target + 4;
    }
    return trimExponent(target, std::to_chars(target, end, value, std::chars_format::scientific).ptr);
}

}  // namespace wavedeck::driver
