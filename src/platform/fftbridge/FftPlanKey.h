#pragma once

#include <cstddef>
#include <tuple>

namespace fftbridge {

/// What a plan is made for: `count` complex transforms of `length` points that follow one another in memory.
struct FftPlanKey {
    std::size_t length{};
    std::size_t count{};
    int sign{};      ///< sign of the exponent: -1 forward, +1 backward, neither scaled
    bool aligned{};  ///< both buffers lie as FFTW's vector loads want them

    bool operator==(const FftPlanKey&) const = default;
    /// Shorter ones first.
    bool operator<(const FftPlanKey& other) const {
        return std::tie(length, count, sign, aligned) < std::tie(other.length, other.count, other.sign, other.aligned);
    }
};

}  // namespace fftbridge
