#pragma once

#include <cstdint>

namespace dspwavedecks {

/// Choices of the distortion measurements.
struct DistortionMeasurementEnum {
    enum class Type : std::uint32_t {
        harmonic = 0,         ///< "harmonic"
        intermodulation = 1,  ///< "intermodulation"
    };
};

}  // namespace dspwavedecks
