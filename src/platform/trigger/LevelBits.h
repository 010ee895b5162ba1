#pragma once

#include <cstddef>
#include <cstdint>

#include "InstructionSet.h"

namespace deckutil {

/// Samples that are looked at together, one bit each.
inline constexpr std::size_t blockSamples = 64;

/// A level, and how far from it a signal must have been to cross it: riseReady < level < fallReady.
struct LevelBounds {
    double riseReady, level, fallReady;
};

/// Where up to 64 samples lie, sample 0 in the lowest bit.
struct LevelBits {
    std::uint64_t isLow;    ///< at riseReady or lower
    std::uint64_t atMost;   ///< at the level or lower
    std::uint64_t atLeast;  ///< at the level or higher
    std::uint64_t isHigh;   ///< at fallReady or higher
};

/// Compares values [n], 64 at most, with a level.
using LevelComparison = LevelBits (*)(const double* values, std::size_t n, const LevelBounds& bounds);

/// How many of times [n], 64 at most, which don't fall, lie before a time.
using TimeComparison = std::size_t (*)(const double* times, std::size_t n, double time);

/// For the machine at hand.
LevelComparison levelComparison();
TimeComparison countBefore();

/// For instructions that the machine must support.
LevelComparison levelComparison(dspwavedecks::InstructionSet set);
TimeComparison countBefore(dspwavedecks::InstructionSet set);

}  // namespace deckutil
