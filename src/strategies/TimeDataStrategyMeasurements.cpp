// What a time message carries besides the signals: the measurements whose stages are active.
#include "BilevelMeasurementsFilter.h"
#include "MeasurementsDataCacheFilter.h"
#include "PeakFinderFilter.h"
#include "SignalStatisticsFilter.h"
#include "TimeDataStrategy.h"

namespace dspwavedecks {

void TimeDataStrategy::addMeasurementInformation(ObjectPointer& measurements) {
    const bool hasStatistics =
        attachIfActive(measurements, "stats", {"bf_time_signal_statistics_filter", "time_signal_statistics_filter"},
                       SignalStatisticsFilter::packageImpl);
    const bool hasPeaks =
        attachIfActive(measurements, "peaks", {"bf_time_peak_finder_filter", "time_peak_finder_filter"},
                       PeakFinderFilter::packageImpl);
    const bool hasPulses =
        attachIfActive(measurements, "bilevel", {"bf_bilevel_measurements_filter", "bilevel_measurements_filter"},
                       BilevelMeasurementsFilter::packageImpl);
    // Only the cache of a simulation grows and may meet its limit.
    if ((hasStatistics || hasPeaks || hasPulses) && isStageActive("bf_wavedeck_measurements_data_cache_filter")) {
        measurements->set("isMaximumCacheMemoryUsed",
                          MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(clientID));
    }
}

}  // namespace dspwavedecks
