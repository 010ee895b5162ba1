#pragma once

#include <limits>
#include <vector>

#include "ChannelMeasurementEnum.h"

namespace dspwavedecks {

/// Channel measurements of one spectrum: on the board under "channel". NaN is what could not be measured.
struct channelMeasurementsStruct {
    /// Which figures the last measurement wrote; those of the other type keep what was there.
    ChannelMeasurementEnum::Type type = ChannelMeasurementEnum::Type::occupiedBandwidth;
    double channelPower = 0.0;     ///< dB of the spectrum's power unit
    double frequencyError = 0.0;   ///< Hz, middle of the occupied band minus middle of the channel
    double startFrequency = 0.0;   ///< Hz, lower edge of the occupied band
    double stopFrequency = 0.0;    ///< Hz, upper edge of the occupied band
    double occupiedBW = 0.0;       ///< Hz
    unsigned long numOffsets = 2;  ///< entries of the two vectors
    std::vector<double> acprUpper = std::vector<double>(2, std::numeric_limits<double>::quiet_NaN());  ///< dB
    std::vector<double> acprLower = std::vector<double>(2, std::numeric_limits<double>::quiet_NaN());  ///< dB
    bool isNewDataReady = false;  ///< measured, and not yet taken by a query
};

}  // namespace dspwavedecks
