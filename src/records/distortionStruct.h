#pragma once

#include <limits>
#include <vector>

#include "DistortionMeasurementEnum.h"

namespace dspwavedecks {

/// Distortion measurements of one spectrum: on the board under "distortion". NaN is what could not be measured.
struct distortionStruct {
    /// Which figures the last measurement wrote; those of the other type keep what was there.
    DistortionMeasurementEnum::Type type = DistortionMeasurementEnum::Type::harmonic;
    /// Entries of the two vectors to show: the number of tones found, whatever their orders; 4 for intermodulation.
    unsigned long numHarmonics = 0;
    double thd = 0.0;         ///< dB, harmonics over fundamental
    double thdPercent = 0.0;  ///< the same as an amplitude ratio in percent
    double snr = 0.0;         ///< dB, fundamental over noise
    double sinad = 0.0;       ///< dB, fundamental over noise and harmonics
    double sfdr = 0.0;        ///< dB, fundamental over the strongest other component
    double toi = 0.0;         ///< third-order intercept in the spectrum's unit
    /// Levels of the tones in the spectrum's unit, by order; or the two tones, the lower and the upper product.
    std::vector<double> harmonicPower = std::vector<double>(2, std::numeric_limits<double>::quiet_NaN());
    std::vector<double> harmonicFrequency = std::vector<double>(2, std::numeric_limits<double>::quiet_NaN());  ///< Hz
    bool isNewDataReady = false;  ///< measured, and not yet taken by a query
};

}  // namespace dspwavedecks
