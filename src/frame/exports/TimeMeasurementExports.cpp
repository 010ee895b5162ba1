// Measurements on frames and on spans of time.
#include "Export.h"
#include "SignalStatisticsFilter.h"

DSPWAVEDECKS_EXPORT_FILTER(signal_statistics_filter, SignalStatisticsFilter)
