#pragma once

#include <compare>
#include <cstddef>

namespace fftbridge {

/// What a plan is made for: `count` complex transforms of `length` points that follow one another in memory.
struct FftPlanKey {
    std::size_t length{};
    std::size_t count{};
    int sign{};      ///< sign of the exponent: -1 forward, +1 backward, neither scaled
    bool aligned{};  ///< both buffers lie as FFTW's vector loads want them

    auto operator<=>(const FftPlanKey&) const = default;
};

}  // namespace fftbridge
