#pragma once

#include <vector>

#include "BaseFilter.h"
#include "MeasurementsDataCache.h"

namespace dspwavedecks {

/// The points in which the filters that measure the displayed span differ when they work out its length from the frame
/// in hand.
struct DisplayedSpanRules {
    bool offsetOfFirstSignal = false;    ///< take the display offset of signal 0, not that of the signal: meant so
    bool axesSpanForEmptyFrame = false;  ///< a frame that ends where the axes begin gives the axes' span, not 0
};

/// Length of the displayed span in seconds. The first time, and whenever the filter's forceComputeSpan is set, it is
/// measured: with autoSpan from the start of the signal's axes to the end of the frame in hand,
///   offset + sample time * (points - 1) - start time of the axes
/// without it the custom span. After that it is the span of the first axes, whatever axes show the signal.
double displayedTimeRange(BaseFilter& filter, int signal, const wavedeck::WaveDeckClientSettings& settings,
                          const DisplayedSpanRules& rules);

/// The newest timeRange seconds of the cache: first index and one past the last. Begins with the first sample that is
/// not older than that; the whole cache for a span that reaches back to time 0 or before. {0, 0} without a cache.
std::vector<unsigned long> newestRange(const MeasurementsDataCache* cache, double timeRange);

}  // namespace dspwavedecks
