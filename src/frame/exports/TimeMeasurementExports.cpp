// Measurements on frames and on spans of time.
#include "BilevelMeasurementsFilter.h"
#include "Export.h"
#include "MeasurementsDataCacheFilter.h"
#include "SignalStatisticsFilter.h"
#include "TimePeakFinderFilter.h"
#include "TimeSignalStatisticsFilter.h"
#include "TriggerFilter.h"

DSPWAVEDECKS_EXPORT_FILTER(signal_statistics_filter, SignalStatisticsFilter)
DSPWAVEDECKS_EXPORT_FILTER(dsp_wavedeck_measurements_data_cache_filter, MeasurementsDataCacheFilter)
DSPWAVEDECKS_EXPORT_FILTER(time_signal_statistics_filter, TimeSignalStatisticsFilter)
DSPWAVEDECKS_EXPORT_FILTER(time_peak_finder_filter, TimePeakFinderFilter)
DSPWAVEDECKS_EXPORT_FILTER(bilevel_measurements_filter, BilevelMeasurementsFilter)
DSPWAVEDECKS_EXPORT_FILTER(trigger_filter, TriggerFilter)
