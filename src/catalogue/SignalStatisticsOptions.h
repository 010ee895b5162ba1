#pragma once

#include "BaseOptions.h"
#include "Option.h"

namespace dspwavedecks::catalogue::signalStatistics {

inline constexpr Option showMax = logical("showMax", "true", "compute the maximum and its position");
inline constexpr Option showMin = logical("showMin", "true", "compute the minimum and its position");
inline constexpr Option showPeakToPeak = logical("showPeakToPeak", "true", "compute maximum minus minimum");
inline constexpr Option showMean = logical("showMean", "true", "compute the mean");
inline constexpr Option showVariance = logical("showVariance", "false", "compute the variance (divisor N - 1)");
inline constexpr Option showStandardDeviation =
    logical("showStandardDeviation", "true", "compute the standard deviation (divisor N - 1)");
inline constexpr Option showMedian = logical("showMedian", "true", "compute the median");
inline constexpr Option showRMS = logical("showRMS", "true", "compute the root of the mean square");
inline constexpr Option showMeanSquare = logical("showMeanSquare", "false", "compute the mean square");
inline constexpr Option signalStatisticsEnabled =
    logical("signalStatisticsEnabled", "false", "switch the statistics on");

/// The options of the statistics in the order in which they are read, the spans last.
inline constexpr auto options =
    join(base::hostFacts, base::measuredChannel,
         list(showMax, showMin, showPeakToPeak, showMean, showVariance, showStandardDeviation, showMedian, showRMS,
              showMeanSquare, signalStatisticsEnabled),
         base::spans);

}  // namespace dspwavedecks::catalogue::signalStatistics
