#pragma once

#include <vector>

namespace dspwavedecks {

/// Statistics of one stretch of one channel, as the statistics filters leave them on the settings board.
struct signalStatsStruct {
    double xMin =
        0.0;  ///< position of the minimum: sample index within the stretch, or seconds once a filter converts it
    double xMax = 0.0;  ///< position of the maximum, by the same convention
    double yMin = 0.0;
    double yMax = 0.0;
    double peakToPeak = 0.0;
    double mean = 0.0;
    double variance = 0.0;  ///< sample variance, divided by N - 1
    double standardDeviation = 0.0;
    double median = 0.0;
    double rms = 0.0;
    double meanSquare = 0.0;

    bool varianceValid = true;  ///< variance and standardDeviation may be computed and shown
    bool minMaxValid = true;    ///< xMin, xMax, yMin, yMax and peakToPeak may be computed and shown
    bool meanValid = true;      ///< mean, median, rms and meanSquare may be computed and shown

    std::vector<double> timeRange;  ///< start and end of the span used, seconds; empty unless a filter fills it
};

}  // namespace dspwavedecks
