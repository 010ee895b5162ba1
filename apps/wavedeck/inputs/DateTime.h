#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace program {

using UtcTime = std::chrono::sys_time<std::chrono::microseconds>;

/// A date and time as ISO 8601 writes it, "2026-01-02T03:04:05.678Z" or with a zone "+01:00" behind; without a zone it
/// is taken for UTC. Nothing when the text is no such time.
std::optional<UtcTime> parseDateTime(std::string_view text);

/// The same the other way: "2026-01-02T03:04:05.678000Z".
std::string formatDateTime(UtcTime time);

}  // namespace program
