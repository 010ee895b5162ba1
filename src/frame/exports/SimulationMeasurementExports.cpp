// The time measurements of a block-diagram simulation.
#include "BFBilevelMeasurementsFilter.h"
#include "BFMeasurementsDataCacheFilter.h"
#include "BFTimePeakFinderFilter.h"
#include "BFTimeSignalStatisticsFilter.h"
#include "BFTriggerFilter.h"
#include "Export.h"

DSPWAVEDECKS_EXPORT_FILTER(bf_wavedeck_measurements_data_cache_filter, BFMeasurementsDataCacheFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_time_signal_statistics_filter, BFTimeSignalStatisticsFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_time_peak_finder_filter, BFTimePeakFinderFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_bilevel_measurements_filter, BFBilevelMeasurementsFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_trigger_filter, BFTriggerFilter)
