#pragma once

#include <vector>

#include "MeasurementsDataCache.h"
#include "SignalStatisticsFilter.h"

namespace dspwavedecks {

/// Statistics of the measured channel over the span of time that the display shows, with the positions of the extremes
/// as times of the display's axis. The span comes from the cache of the time measurements; a replay is measured as the
/// frame that it is.
class TimeSignalStatisticsFilter : public SignalStatisticsFilter {
public:
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// First index and one past the last into the cache.
    std::vector<unsigned long> getDataRange(const int& signal) override;
    /// Length of the span in seconds.
    double getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings);

protected:
    /// Whether the record tells the start and the end of the span.
    enum class SpanInRecord { No, Yes };

    /// Measures the span of the cache that getDataRange gives; an empty one leaves the board as it is.
    void measureCachedSpan(int signal, SpanInRecord spanInRecord);

private:
    void measureFrame(const double* data, int signal);

    // Scratch.
    std::vector<double> span;
};

}  // namespace dspwavedecks
