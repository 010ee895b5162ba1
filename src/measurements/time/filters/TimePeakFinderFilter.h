#pragma once

#include <vector>

#include "PeakFinderFilter.h"

namespace dspwavedecks {

/// Peaks of the measured channel over the span of time that the display shows, with locations as times of the display's
/// axis. The span comes from the cache of the time measurements; a replay is searched as the frame that it is.
class TimePeakFinderFilter : public PeakFinderFilter {
public:
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// First index and one past the last into the cache.
    std::vector<unsigned long> getDataRange(const int& signal) override;
    /// Length of the span in seconds.
    double getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings);

protected:
    /// Searches the span of the cache that getDataRange gives; an empty one leaves the board as it is.
    void searchCachedSpan(int signal);

private:
    void searchFrame(const double* data, int signal);

    // Scratch.
    std::vector<double> span;
    peakFinderStruct located;  ///< the peaks with times for locations
};

}  // namespace dspwavedecks
