#include "SweepLine.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace program {
namespace {

void append(std::string& text, const char* format, double value) {
    std::array<char, 40> digits{};
    std::snprintf(digits.data(), digits.size(), format, value);
    text += ", ";
    text += digits.data();
}

/// A frequency: without a point where it is whole, as some readers want it.
void appendFrequency(std::string& text, double frequency) {
    append(text, frequency == std::trunc(frequency) ? "%.0f" : "%.6f", frequency);
}

}  // namespace

std::string sweepLine(UtcTime time, double low, double step, std::uint64_t samples, std::span<const double> levels) {
    const auto days = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(days);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::seconds>(time - days));
    std::array<char, 64> begin{};
    std::snprintf(begin.data(), begin.size(), "%04d-%02u-%02u, %02d:%02d:%02d", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    std::string line = begin.data();
    appendFrequency(line, low);
    appendFrequency(line, low + step * static_cast<double>(levels.size()));
    append(line, "%.10g", step);
    line += ", " + std::to_string(samples);
    for (const double level : levels) {
        append(line, "%.3f", level);
    }
    line += '\n';
    return line;
}

}  // namespace program
