#pragma once

#include <string>

#include "channelMeasurementsStruct.h"
#include "peakFinderStruct.h"
#include "signalStatsStruct.h"
#include "spectrumEstimatorMetaDataStruct.h"

/// The records of the board as JSON objects: every field under its own name.
namespace program {

std::string toJson(const dspwavedecks::signalStatsStruct& record);
std::string toJson(const dspwavedecks::peakFinderStruct& record);
std::string toJson(const dspwavedecks::channelMeasurementsStruct& record);
std::string toJson(const dspwavedecks::spectrumEstimatorMetaDataStruct& record);

}  // namespace program
