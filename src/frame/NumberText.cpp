#include "NumberText.h"

#include <array>
#include <charconv>

namespace dspwavedecks {

std::string numberText(double value) {
    // Seventeen digits, sign, point and an exponent of three digits need 24 characters.
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 17);
    return {text.data(), end.ptr};
}

std::string numberText(unsigned long value) {
    return std::to_string(value);
}

}  // namespace dspwavedecks
