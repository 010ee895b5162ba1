#pragma once

#include <array>
#include <limits>

namespace dspwavedecks {

/// What the pulse measurements find in one span; a figure that was not or cannot be measured is NaN.
struct bilevelMeasurementsStruct {
    static constexpr double unmeasured = std::numeric_limits<double>::quiet_NaN();

    double highStateLevel = unmeasured;   ///< signal's unit
    double lowStateLevel = unmeasured;    ///< signal's unit
    double amplitude = unmeasured;        ///< high minus low state level
    double posEdges = unmeasured;         ///< count of rising transitions
    double riseTime = unmeasured;         ///< s, mean
    double posSlewRate = unmeasured;      ///< signal's unit / s, mean
    double negEdges = unmeasured;         ///< count of falling transitions
    double fallTime = unmeasured;         ///< s, mean
    double negSlewRate = unmeasured;      ///< signal's unit / s, mean, negative
    double posPreshoot = unmeasured;      ///< % of the amplitude, mean
    double posOvershoot = unmeasured;     ///< %
    double posUndershoot = unmeasured;    ///< %
    double posSettlingTime = unmeasured;  ///< s from the mid crossing, mean
    double negPreshoot = unmeasured;      ///< %
    double negOvershoot = unmeasured;     ///< %
    double negUndershoot = unmeasured;    ///< %
    double negSettlingTime = unmeasured;  ///< s
    double period = unmeasured;           ///< s, mean
    double frequency = unmeasured;        ///< Hz
    double posPulses = unmeasured;        ///< count
    double posWidth = unmeasured;         ///< s, mean
    double posDutyCycle = unmeasured;     ///< %, mean
    double negPulses = unmeasured;        ///< count
    double negWidth = unmeasured;         ///< s, mean
    double negDutyCycle = unmeasured;     ///< %, mean
};

/// One figure of the record with its name.
struct bilevelMeasurementsField {
    const char* name;
    double bilevelMeasurementsStruct::*value;
};

/// All figures by name, in the order of the record.
inline constexpr std::array<bilevelMeasurementsField, 25> bilevelMeasurementsFields{{
    {"highStateLevel", &bilevelMeasurementsStruct::highStateLevel},
    {"lowStateLevel", &bilevelMeasurementsStruct::lowStateLevel},
    {"amplitude", &bilevelMeasurementsStruct::amplitude},
    {"posEdges", &bilevelMeasurementsStruct::posEdges},
    {"riseTime", &bilevelMeasurementsStruct::riseTime},
    {"posSlewRate", &bilevelMeasurementsStruct::posSlewRate},
    {"negEdges", &bilevelMeasurementsStruct::negEdges},
    {"fallTime", &bilevelMeasurementsStruct::fallTime},
    {"negSlewRate", &bilevelMeasurementsStruct::negSlewRate},
    {"posPreshoot", &bilevelMeasurementsStruct::posPreshoot},
    {"posOvershoot", &bilevelMeasurementsStruct::posOvershoot},
    {"posUndershoot", &bilevelMeasurementsStruct::posUndershoot},
    {"posSettlingTime", &bilevelMeasurementsStruct::posSettlingTime},
    {"negPreshoot", &bilevelMeasurementsStruct::negPreshoot},
    {"negOvershoot", &bilevelMeasurementsStruct::negOvershoot},
    {"negUndershoot", &bilevelMeasurementsStruct::negUndershoot},
    {"negSettlingTime", &bilevelMeasurementsStruct::negSettlingTime},
    {"period", &bilevelMeasurementsStruct::period},
    {"frequency", &bilevelMeasurementsStruct::frequency},
    {"posPulses", &bilevelMeasurementsStruct::posPulses},
    {"posWidth", &bilevelMeasurementsStruct::posWidth},
    {"posDutyCycle", &bilevelMeasurementsStruct::posDutyCycle},
    {"negPulses", &bilevelMeasurementsStruct::negPulses},
    {"negWidth", &bilevelMeasurementsStruct::negWidth},
    {"negDutyCycle", &bilevelMeasurementsStruct::negDutyCycle},
}};

}  // namespace dspwavedecks
