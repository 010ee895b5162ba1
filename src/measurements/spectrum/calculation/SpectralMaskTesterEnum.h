#pragma once

#include <cstdint>

namespace dspwavedecks {

/// Choices of the spectral mask test.
struct SpectralMaskTesterEnum {
    enum class EnabledMasks : std::uint32_t {
        none = 0,           ///< "none"
        upper = 1,          ///< "upper"
        lower = 2,          ///< "lower"
        upperAndLower = 3,  ///< "upper-and-lower"
    };

    /// The level that masks are relative to.
    enum class ReferenceLevel : std::uint32_t {
        custom = 0,        ///< "custom": a fixed level
        spectrumPeak = 1,  ///< "spectrum-peak": the strongest bin of a channel
    };
};

}  // namespace dspwavedecks
