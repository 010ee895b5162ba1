// Magnitude and phase.
#include "DigitalFilterFrequencyResponseFilter.h"
#include "Export.h"
#include "MagPhaseFilter.h"
#include "MagPhaseResponseFilter.h"

DSPWAVEDECKS_EXPORT_FILTER(magnitude_phase_filter, MagPhaseFilter)
DSPWAVEDECKS_EXPORT_FILTER(digital_filter_frequency_response_filter, DigitalFilterFrequencyResponseFilter)
DSPWAVEDECKS_EXPORT_FILTER(magnitude_phase_response_filter, MagPhaseResponseFilter)
