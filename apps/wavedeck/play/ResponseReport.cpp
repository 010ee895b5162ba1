#include "ResponseReport.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace program {
namespace {

/// Where the response crosses a level.
ReportTable crossings(const char* key, const char* label, std::span<const double> frequencies,
                      std::span<const double> decibels, double level) {
    ReportTable table{key, {{"frequency", label, "Hz"}}, {}};
    for (std::size_t i = 1; i < decibels.size(); ++i) {
        if ((decibels[i - 1] >= level) != (decibels[i] >= level)) {
            const double part = (level - decibels[i - 1]) / (decibels[i] - decibels[i - 1]);
            table.rows.push_back({frequencies[i - 1] + part * (frequencies[i] - frequencies[i - 1])});
        }
    }
    return table;
}

/// Index of the first rise when walking from `from` in steps of `step`; the size where there is none.
std::size_t firstRise(std::span<const double> decibels, std::size_t from, std::ptrdiff_t step) {
    auto at = static_cast<std::ptrdiff_t>(from);
    const auto size = static_cast<std::ptrdiff_t>(decibels.size());
    for (; at + step >= 0 && at + step < size; at += step) {
        if (decibels[static_cast<std::size_t>(at + step)] > decibels[static_cast<std::size_t>(at)]) {
            return static_cast<std::size_t>(at);
        }
    }
    return decibels.size();
}

/// The lowest and the highest frequency within 3 dB of the greatest gain.
void addPassband(std::span<const double> frequencies, std::span<const double> decibels, double passLevel,
                 ReportSection& section) {
    const auto passes = [&](double level) { return level >= passLevel; };
    const auto first = std::find_if(decibels.begin(), decibels.end(), passes);
    if (first == decibels.end()) {
        return;
    }
    const auto behindLast = std::find_if(decibels.rbegin(), decibels.rend(), passes);
    const auto last = static_cast<std::size_t>(decibels.rend() - behindLast) - 1;
    section.add(
        {"passbandStart", "passband from", frequencies[static_cast<std::size_t>(first - decibels.begin())], "Hz"});
    section.add({"passbandStop", "passband to", frequencies[last], "Hz"});
}

/// The greatest gain outside the first minima on both sides of everything within 3 dB of the greatest gain.
void addStopband(std::span<const double> frequencies, std::span<const double> decibels, double passLevel,
                 ReportSection& section) {
    const auto passes = [&](double level) { return level >= passLevel; };
    const auto first =
        static_cast<std::size_t>(std::find_if(decibels.begin(), decibels.end(), passes) - decibels.begin());
    const auto last =
        static_cast<std::size_t>(decibels.rend() - std::find_if(decibels.rbegin(), decibels.rend(), passes)) - 1;
    std::size_t strongest = decibels.size();
    const auto consider = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            if (strongest == decibels.size() || decibels[i] > decibels[strongest]) {
                strongest = i;
            }
        }
    };
    if (const auto rise = firstRise(decibels, first, -1); rise < decibels.size()) {
        consider(0, rise);
    }
    if (const auto rise = firstRise(decibels, last, 1); rise < decibels.size()) {
        consider(rise, decibels.size());
    }
    if (strongest < decibels.size()) {
        section.add({"stopbandPeak", "stopband peak", decibels[strongest], "dB"});
        section.add({"stopbandPeakFrequency", "stopband peak at", frequencies[strongest], "Hz"});
    }
}

}  // namespace

ReportSection reportResponse(std::span<const double> frequencies, std::span<const double> decibels) {
    ReportSection section{"response", "response"};
    if (decibels.empty()) {
        return section;
    }
    const auto greatest = std::max_element(decibels.begin(), decibels.end());
    const auto at = static_cast<std::size_t>(greatest - decibels.begin());
    section.add({"points", "points", static_cast<std::uint64_t>(decibels.size())});
    section.add({"startFrequency", "from", frequencies.front(), "Hz"});
    section.add({"stopFrequency", "to", frequencies.back(), "Hz"});
    section.add({"greatestGain", "greatest gain", *greatest, "dB"});
    section.add({"greatestGainFrequency", "greatest gain at", frequencies[at], "Hz"});
    section.add({"startGain", "gain at the start", decibels.front(), "dB"});
    section.add({"stopGain", "gain at the end", decibels.back(), "dB"});
    constexpr double halfPower = 3.0;
    constexpr double halfAmplitude = 6.0;
    addPassband(frequencies, decibels, *greatest - halfPower, section);
    addStopband(frequencies, decibels, *greatest - halfPower, section);
    section.tables.push_back(crossings("points3dB", "-3 dB at", frequencies, decibels, *greatest - halfPower));
    section.tables.push_back(crossings("points6dB", "-6 dB at", frequencies, decibels, *greatest - halfAmplitude));
    return section;
}

void showPeaksByFrequency(std::span<const double> frequencies, ReportTable& peaks) {
    peaks.columns.front() = {"frequency", "frequency", "Hz"};
    for (auto& row : peaks.rows) {
        const auto index = static_cast<std::size_t>(row.front());
        row.front() = index < frequencies.size() ? frequencies[index] : std::numeric_limits<double>::quiet_NaN();
    }
}

}  // namespace program
