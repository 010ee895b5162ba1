// What a time message carries besides the signals: the measurements whose stages are active.
#include "SignalStatisticsFilter.h"
#include "TimeDataStrategy.h"

namespace dspwavedecks {

void TimeDataStrategy::addMeasurementInformation(ObjectPointer& measurements) {
    attachIfActive(measurements, "stats", {"bf_time_signal_statistics_filter", "time_signal_statistics_filter"},
                   SignalStatisticsFilter::packageImpl);
}

}  // namespace dspwavedecks
