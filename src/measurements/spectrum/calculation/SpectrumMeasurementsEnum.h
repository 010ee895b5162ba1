#pragma once

#include <cstdint>

#include "EnumKeys.h"

namespace dspwavedecks {

/// What a displayed spectrum holds and in which unit: the vocabulary that all spectrum measurements share.
struct SpectrumMeasurementsEnum {
    /// What one bin tells.
    enum class SpectrumType : std::uint32_t {
        power = 0,         ///< power in one resolution bandwidth
        powerDensity = 1,  ///< density per hertz
        rms = 2,           ///< rms amplitude
    };

    /// The unit of one bin. The numbering is fixed: it is not the order in which a display lists the units.
    enum class SpectrumUnits : std::uint32_t {
        watts = 0,
        dbw = 1,
        dbm = 2,
        dbfs = 3,
        vrms = 4,
        dbv = 5,
        dbuv = 6,
        wattsPerHz = 7,
        dbwPerHz = 8,
        dbmPerHz = 9,
        dbfsPerHz = 10,
    };

    /// "power", "power-density", "rms".
    static EnumKeys<SpectrumType> spectrumTypeKeys();

    /// "watts", "dbw", "dbm", "dbfs", "vrms", "dbv", "dbuv", "watts/hz", "dbw/hz", "dbm/hz", "dbfs/hz".
    static EnumKeys<SpectrumUnits> spectrumUnitsKeys();
};

}  // namespace dspwavedecks
