#include "DateTime.h"

#include <array>
#include <cstdio>

namespace program {
namespace {

/// Takes `digits` digits off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
    int value = 0;
    if (text.size() < digits) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < digits; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return std::nullopt;
        }
        value = 10 * value + (text[i] - '0');
    }
    text.remove_prefix(digits);
    return value;
}

bool take(std::string_view& text, std::string_view allowed) {
    const bool fits = !text.empty() && allowed.find(text.front()) != std::string_view::npos;
    text.remove_prefix(fits ? 1 : 0);
    return fits;
}

/// What a zone is ahead of UTC, minutes; nothing if the rest is no zone.
std::optional<int> takeZone(std::string_view text) {
    if (text.empty() || text == "Z" || text == "z") {
        return 0;
    }
    const int sign = text.front() == '-' ? -1 : 1;
    if (!take(text, "+-")) {
        return std::nullopt;
    }
    const auto hours = takeNumber(text, 2);
    take(text, ":");
    const auto minutes = text.empty() ? std::optional(0) : takeNumber(text, 2);
    return hours && minutes && text.empty() ? std::optional(sign * (60 * *hours + *minutes)) : std::nullopt;
}

}  // namespace

std::optional<UtcTime> parseDateTime(std::string_view text) {
    const auto year = takeNumber(text, 4);
    take(text, "-");
    const auto month = takeNumber(text, 2);
    take(text, "-");
    const auto day = takeNumber(text, 2);
    if (!year || !month || !day || !take(text, "Tt ")) {
        return std::nullopt;
    }
    const auto hour = takeNumber(text, 2);
    take(text, ":");
    const auto minute = takeNumber(text, 2);
    take(text, ":");
    const auto second = takeNumber(text, 2);
    std::chrono::microseconds fraction{0};
    if (take(text, ".,")) {
        for (int scale = 100000; !text.empty() && text.front() >= '0' && text.front() <= '9'; scale /= 10) {
            fraction += std::chrono::microseconds((text.front() - '0') * scale);
            text.remove_prefix(1);
        }
    }
    const auto zone = takeZone(text);
    if (!hour || !minute || !second || !zone) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + std::chrono::hours(*hour) + std::chrono::minutes(*minute - *zone) +
           std::chrono::seconds(*second) + fraction;
}

std::string formatDateTime(UtcTime time) {
    const auto days = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(days);
    const std::chrono::hh_mm_ss clock(time - days);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text.data();
}

}  // namespace program
