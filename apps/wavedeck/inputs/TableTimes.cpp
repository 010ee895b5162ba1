#include "TableTimes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace program {
namespace {

/// The roundest number between two, near the third: what it is, and with how many digits it is written.
std::pair<double, int> roundest(double lowest, double highest, double value) {
    constexpr int mostDigits = 17;
    for (int digits = 1; digits <= mostDigits; ++digits) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.*e", digits - 1, value);
        const double rounded = std::strtod(text.data(), nullptr);
        if (rounded >= lowest && rounded <= highest) {
            return {rounded, digits};
        }
    }
    return {value, mostDigits};
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

}  // namespace

std::optional<double> TableTimes::findUnit(std::string_view title) {
    static constexpr std::array<std::pair<std::string_view, double>, 14> units{{{"", 1.0},
                                                                                {"s", 1.0},
                                                                                {"sec", 1.0},
                                                                                {"second", 1.0},
                                                                                {"seconds", 1.0},
                                                                                {"ms", 1e-3},
                                                                                {"us", 1e-6},
                                                                                {"\xC2\xB5s", 1e-6},
                                                                                {"\xCE\xBCs", 1e-6},
                                                                                {"ns", 1e-9},
                                                                                {"ps", 1e-12},
                                                                                {"min", 60.0},
                                                                                {"h", 3600.0},
                                                                                {"hours", 3600.0}}};
    static constexpr std::array<std::string_view, 8> names{"time", "t",   "times",  "x-axis",
                                                           "s",    "sec", "second", "seconds"};
    const auto text = lowerCase(title);
    const auto nameEnd = text.find_first_of(" ([_/,");
    const auto name = text.substr(0, nameEnd);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        return std::nullopt;
    }
    std::string unit = nameEnd == std::string::npos ? "" : text.substr(nameEnd);
    std::erase_if(unit, [](char c) { return std::string_view(" ()[]_/,").find(c) != std::string_view::npos; });
    const auto* found =
        std::find_if(units.begin(), units.end(), [&](const auto& entry) { return entry.first == unit; });
    return found == units.end() ? std::nullopt : std::optional(found->second);
}

void TableTimes::add(std::string_view cell, double value) {
    const auto mantissa = cell.substr(0, cell.find_first_of("eE"));
    int digits = 0;
    int decimals = 0;
    bool behindPoint = false;
    for (const char c : mantissa) {
        behindPoint = behindPoint || c == '.' || c == ',';
        const bool isDigit = c >= '0' && c <= '9';
        digits += isDigit && (digits > 0 || c != '0') ? 1 : 0;
        decimals += isDigit && behindPoint ? 1 : 0;
    }
    const bool hasExponent = mantissa.size() < cell.size();
    sameDecimals_ = sameDecimals_ && !hasExponent && (first_.empty() || decimals == mostDecimals_);
    mostDecimals_ = std::max(mostDecimals_, decimals);
    mostDigits_ = std::max(mostDigits_, digits);
    first_.push_back(value);
}

double TableTimes::resolution(double value) const {
    if (sameDecimals_) {
        return std::pow(10.0, -mostDecimals_);
    }
    return value == 0.0 ? 0.0 : std::pow(10.0, std::floor(std::log10(std::abs(value))) - mostDigits_ + 1);
}

std::optional<double> TableTimes::rate() {
    if (first_.size() < 2) {
        return std::nullopt;
    }
    const double steps = static_cast<double>(first_.size() - 1);
    const double stretch = first_.back() - first_.front();
    if (!(stretch > 0.0) || !std::isfinite(stretch)) {
        return std::nullopt;
    }
    // Both ends are rounded, each by at most half of its last digit.
    const double slack =
        std::min((resolution(first_.front()) + resolution(first_.back())) / 2.0, 0.5 * stretch / steps);
    const double shortest = (stretch - slack) / steps * unit_;
    const double longest = (stretch + slack) / steps * unit_;
    const double period = stretch / steps * unit_;
    const auto [roundPeriod, periodDigits] = roundest(shortest, longest, period);
    const auto [roundRate, rateDigits] = roundest(1.0 / longest, 1.0 / shortest, 1.0 / period);
    const double rate = periodDigits < rateDigits ? 1.0 / roundPeriod : roundRate;
    step_ = 1.0 / rate / unit_;
    last_.reset();
    if (!std::all_of(first_.begin(), first_.end(), [&](double value) { return follows(value); })) {
        return std::nullopt;
    }
    return rate;
}

std::size_t TableTimes::firstUneven() const {
    constexpr double part = 0.25;  // of a step
    const double step = first_.size() > 1 ? first_[1] - first_[0] : 0.0;
    std::size_t row = 1;
    while (row + 1 < first_.size() && step > 0.0 && std::abs(first_[row] - first_[row - 1] - step) <= part * step) {
        ++row;
    }
    return row;
}

bool TableTimes::follows(double value) {
    constexpr double part = 0.25;  // of a step
    // Digits so few that they hide steps excuse nothing.
    const double rounding = resolution(value) <= step_ / 2.0 ? resolution(value) : 0.0;
    // The difference of two rounded times is off by one last digit at most; a thousandth of it for the arithmetic.
    const bool fits = !last_ || std::abs(value - *last_ - step_) <= std::max(part * step_, 1.001 * rounding);
    last_ = value;
    return fits;
}

}  // namespace program
