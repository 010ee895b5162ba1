#pragma once

#include <cstdint>

namespace dspwavedecks {

/// Choices of the channel measurements.
struct ChannelMeasurementEnum {
    enum class Type : std::uint32_t {
        occupiedBandwidth = 0,  ///< "occupied-bandwidth"
        acpr = 1,               ///< "acpr": adjacent channel power ratio
    };

    /// The filter through which the power of a channel is measured.
    enum class FilterShape : std::uint32_t {
        none = 0,      ///< "none"
        gaussian = 1,  ///< "gaussian"
        rrc = 2,       ///< "rrc": root-raised cosine
    };
};

}  // namespace dspwavedecks
