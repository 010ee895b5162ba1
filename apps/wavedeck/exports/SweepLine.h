#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace program {

using UtcTime = std::chrono::sys_time<std::chrono::microseconds>;

/// A date and time as ISO 8601 writes it, "2026-01-02T03:04:05.678Z" or with a zone "+01:00" behind; without a zone it
/// is taken for UTC. Nothing when the text is no such time.
std::optional<UtcTime> parseDateTime(std::string_view text);

/// A spectrum as a line "date, time, hz_low, hz_high, hz_step, samples, dB, dB, ..." that spectrum tools exchange, with
/// a line break. Bin i lies at hz_low + i * hz_step, and hz_high is hz_low + n * hz_step.
/// time     UTC; whole seconds are written
/// low      Hz, first bin
/// step     Hz, bin to bin
/// samples  that went into the line
/// levels   [n] dB
std::string sweepLine(UtcTime time, double low, double step, std::uint64_t samples, std::span<const double> levels);

}  // namespace program
