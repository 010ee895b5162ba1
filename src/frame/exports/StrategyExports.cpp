// The strategies, which make the client messages.
#include "Export.h"
#include "FrameDataStrategy.h"
#include "TimeDataStrategy.h"

DSPWAVEDECKS_EXPORT_STRATEGY(dsp_wavedeck_time_data_strategy, TimeDataStrategy)
DSPWAVEDECKS_EXPORT_STRATEGY(dsp_wavedeck_frame_data_strategy, FrameDataStrategy)
