#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>

namespace program {

/// Random numbers that are a function of (seed, stream, index) and nothing else: any stretch of a signal can be made at
/// any time, and comes out the same however it is cut into frames. The mixing steps are those of the 64-bit finaliser
/// "splitmix64" (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014).
class RandomNumbers {
public:
    RandomNumbers(std::uint64_t seed, std::uint64_t stream) : key_(mix(mix(seed) ^ (stream * golden))) {}

    /// Uniform in the open interval (0, 1), multiples of 2^-53 shifted by half a step.
    double uniform(std::uint64_t index) const { return (static_cast<double>(bits(index) >> 11U) + 0.5) * 0x1p-53; }

    /// Two independent Gaussian numbers of mean 0 and variance 1 (Box and Muller).
    std::complex<double> gaussianPair(std::uint64_t index) const {
        const double radius = std::sqrt(-2.0 * std::log(uniform(2 * index)));
        return std::polar(radius, 2.0 * std::numbers::pi * uniform(2 * index + 1));
    }

private:
    static constexpr std::uint64_t golden = 0x9E3779B97F4A7C15U;

    static std::uint64_t mix(std::uint64_t z) {
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }

    std::uint64_t bits(std::uint64_t index) const { return mix(key_ + (index + 1) * golden); }

    std::uint64_t key_;
};

}  // namespace program
