// Simulation time, counters and pacing.
#include "BFAppSimulationMetaDataFilter.h"
#include "BFSimulationMetaDataFilter.h"
#include "BFSimulationPacerFilter.h"
#include "Export.h"
#include "SimulationMetaDataFilter.h"
#include "SimulationQueries.h"

DSPWAVEDECKS_EXPORT_FILTER(simulation_meta_data_filter, SimulationMetaDataFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_simulation_meta_data_filter, BFSimulationMetaDataFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_app_simulation_meta_data_filter, BFAppSimulationMetaDataFilter)
DSPWAVEDECKS_EXPORT_FILTER(bf_simulation_pacer_filter, BFSimulationPacerFilter)

DSPWAVEDECKS_EXPORT_QUERY(getSimulationTimeImpl, dspwavedecks::answerSimulationTime)
DSPWAVEDECKS_EXPORT_QUERY(getSimulationMetaDataImpl, dspwavedecks::answerSimulationMetaData)
