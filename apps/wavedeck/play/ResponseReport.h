#pragma once

#include <span>

#include "Report.h"

namespace program {

/// What an engineer asks of a filter's response, from its magnitudes on a rising grid of frequencies: greatest gain,
/// gain at both ends, the points 3 dB and 6 dB below the greatest gain, and the greatest gain of the stopbands.
///
/// A point is where the line between two grid points crosses the level, linear in dB. A stopband begins where the
/// response, falling away from the passband, first rises again; where it never does there is none.
/// frequencies  [n] Hz
/// decibels     [n] 20 log10 of the magnitude
ReportSection reportResponse(std::span<const double> frequencies, std::span<const double> decibels);

/// Turns the first column of a table of peaks, indices into the grid, into frequencies.
void showPeaksByFrequency(std::span<const double> frequencies, ReportTable& peaks);

}  // namespace program
