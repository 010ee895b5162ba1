#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "DateTime.h"

namespace program {

/// A spectrum as a line "date, time, hz_low, hz_high, hz_step, samples, dB, dB, ..." that spectrum tools exchange, with
/// a line break. Bin i lies at hz_low + i * hz_step, and hz_high is hz_low + n * hz_step.
/// time     UTC; whole seconds are written
/// low      Hz, first bin
/// step     Hz, bin to bin
/// samples  that went into the line
/// levels   [n] dB
std::string sweepLine(UtcTime time, double low, double step, std::uint64_t samples, std::span<const double> levels);

}  // namespace program
