// The strategies, which make the client messages.
#include "BFFrequencyDataStrategy.h"
#include "Export.h"
#include "FrameDataStrategy.h"
#include "FrequencyDataStrategy.h"
#include "MagPhaseResponseDataStrategy.h"
#include "TimeDataStrategy.h"

DSPWAVEDECKS_EXPORT_STRATEGY(dsp_wavedeck_time_data_strategy, TimeDataStrategy)
DSPWAVEDECKS_EXPORT_STRATEGY(dsp_wavedeck_frequency_data_strategy, FrequencyDataStrategy)
DSPWAVEDECKS_EXPORT_STRATEGY(bf_dsp_wavedeck_frequency_data_strategy, BFFrequencyDataStrategy)
DSPWAVEDECKS_EXPORT_STRATEGY(dsp_wavedeck_frame_data_strategy, FrameDataStrategy)
DSPWAVEDECKS_EXPORT_STRATEGY(magnitude_phase_response_data_strategy, MagPhaseResponseDataStrategy)
