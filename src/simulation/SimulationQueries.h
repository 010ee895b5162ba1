#pragma once

#include "numbench/nbArray.h"

namespace dspwavedecks {

/// plhs[0]: the time that the client's data has reached, seconds; 0 before there is any.
void answerSimulationTime(nbArray** plhs, const nbArray** prhs);

/// plhs[0]: a structure of doubles, "SimulationTime", "SamplesProcessed" and "FramesProcessed"; 0 for what is not
/// there.
void answerSimulationMetaData(nbArray** plhs, const nbArray** prhs);

}  // namespace dspwavedecks
