#pragma once

#include <boost/circular_buffer.hpp>
#include <string>

#include "bilevelMeasurementsStruct.h"
#include "channelMeasurementsStruct.h"
#include "distortionStruct.h"
#include "peakFinderStruct.h"
#include "phaseNoiseStruct.h"
#include "signalStatsStruct.h"
#include "spectralMaskStruct.h"
#include "spectrumEstimatorMetaDataStruct.h"
#include "triggerStruct.h"

/// The records of the board as JSON objects: every field under its own name.
namespace program {

std::string toJson(const dspwavedecks::signalStatsStruct& record);
std::string toJson(const dspwavedecks::peakFinderStruct& record);
std::string toJson(const dspwavedecks::channelMeasurementsStruct& record);
std::string toJson(const dspwavedecks::distortionStruct& record);
std::string toJson(const dspwavedecks::phaseNoiseStruct& record);
std::string toJson(const dspwavedecks::spectralMaskStruct& record);
std::string toJson(const dspwavedecks::spectrumEstimatorMetaDataStruct& record);
std::string toJson(const dspwavedecks::bilevelMeasurementsStruct& record);
std::string toJson(const dspwavedecks::triggerStruct& record);
/// The queue of trigger events, the oldest first.
std::string toJson(const boost::circular_buffer<dspwavedecks::triggerStruct>& queue);

}  // namespace program
