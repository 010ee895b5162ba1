#include "EngineeringNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <system_error>
#include <utility>

#include "UsageError.h"

namespace program {
namespace {

constexpr std::array<std::pair<char, double>, 6> suffixes{
    {{'k', 1e3}, {'M', 1e6}, {'G', 1e9}, {'m', 1e-3}, {'u', 1e-6}, {'n', 1e-9}}};

constexpr double largestExactInteger = 9007199254740992.0;

/// The number without a sign; from_chars takes "inf" and "nan" in any case.
std::optional<double> parseUnsigned(std::string_view text) {
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc()) {
        return std::nullopt;
    }
    if (rest == end) {
        return value;
    }
    const auto* suffix = std::find_if(suffixes.begin(), suffixes.end(),
                                      [unit = *rest](const auto& entry) { return entry.first == unit; });
    if (suffix == suffixes.end() || rest + 1 != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    // Dividing by the exact 1e3 rounds once, where multiplying by the inexact 1e-3 would round twice.
    return suffix->second < 1.0 ? value / std::round(1.0 / suffix->second) : value * suffix->second;
}

bool takesPrefix(std::string_view unit) {
    static constexpr std::array<std::string_view, 4> units{"Hz", "s", "V", "W"};
    return std::find(units.begin(), units.end(), unit) != units.end();
}

std::string formatDigits(double value, int digits) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.*g", digits, value);
    return text.data();
}

}  // namespace

std::optional<double> parseNumber(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        text.remove_prefix(1);
    }
    if (text.empty() || text.front() == '-' || text.front() == '+') {
        return std::nullopt;
    }
    const auto value = parseUnsigned(text);
    return value && negative ? -*value : value;
}

std::optional<long long> parseWholeNumber(std::string_view text) {
    const auto value = parseNumber(text);
    if (!value || !(std::abs(*value) <= largestExactInteger) || *value != std::trunc(*value)) {
        return std::nullopt;
    }
    return static_cast<long long>(*value);
}

double readNumber(std::string_view name, std::string_view text) {
    const auto value = parseNumber(text);
    if (!value) {
        throw UsageError(std::string(name) + ": `" + std::string(text) +
                         "` is not a number (suffixes k M G m u n, no unit)");
    }
    return *value;
}

double readPositiveNumber(std::string_view name, std::string_view text) {
    const double value = readNumber(name, text);
    if (!(value > 0.0) || std::isinf(value)) {
        throw UsageError(std::string(name) + ": " + std::string(text) + " is not above 0 and finite");
    }
    return value;
}

long long readWholeNumber(std::string_view name, std::string_view text, long long smallest) {
    const auto value = parseWholeNumber(text);
    if (!value || *value < smallest) {
        throw UsageError(std::string(name) + ": `" + std::string(text) + "` is not a whole number of at least " +
                         std::to_string(smallest));
    }
    return *value;
}

std::string formatQuantity(double value, std::string_view unit, int digits) {
    static constexpr std::array<std::string_view, 8> prefixes{"n", "u", "m", "", "k", "M", "G", "T"};
    static constexpr int noPrefix = 3;
    int prefix = noPrefix;
    if (takesPrefix(unit) && std::isfinite(value) && value != 0.0) {
        // Decided on the rounded text's magnitude, so that 999.9999999 Hz reads 1 kHz and not 1000 Hz.
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.*e", digits - 1, std::abs(value));
        const double rounded = *parseNumber(text.data());
        const int thousands = static_cast<int>(std::floor(std::log10(rounded) / 3.0 + 1e-9));
        prefix = std::clamp(noPrefix + thousands, 0, static_cast<int>(prefixes.size()) - 1);
    }
    std::string shown = formatDigits(value / std::pow(1000.0, prefix - noPrefix), digits);
    if (!unit.empty()) {
        shown += ' ';
        shown += prefixes[static_cast<std::size_t>(prefix)];
        shown += unit;
    }
    return shown;
}

}  // namespace program
