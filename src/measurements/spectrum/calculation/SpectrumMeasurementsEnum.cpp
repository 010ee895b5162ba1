#include "SpectrumMeasurementsEnum.h"

namespace dspwavedecks {

EnumKeys<SpectrumMeasurementsEnum::SpectrumType> SpectrumMeasurementsEnum::spectrumTypeKeys() {
    return {{"power", SpectrumType::power}, {"power-density", SpectrumType::powerDensity}, {"rms", SpectrumType::rms}};
}

EnumKeys<SpectrumMeasurementsEnum::SpectrumUnits> SpectrumMeasurementsEnum::spectrumUnitsKeys() {
    return {{"watts", SpectrumUnits::watts},      {"dbw", SpectrumUnits::dbw},
            {"dbm", SpectrumUnits::dbm},          {"dbfs", SpectrumUnits::dbfs},
            {"vrms", SpectrumUnits::vrms},        {"dbv", SpectrumUnits::dbv},
            {"dbuv", SpectrumUnits::dbuv},        {"watts/hz", SpectrumUnits::wattsPerHz},
            {"dbw/hz", SpectrumUnits::dbwPerHz},  {"dbm/hz", SpectrumUnits::dbmPerHz},
            {"dbfs/hz", SpectrumUnits::dbfsPerHz}};
}

}  // namespace dspwavedecks
