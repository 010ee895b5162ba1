#pragma once

#include <span>
#include <string_view>

#include "Option.h"

namespace dspwavedecks::catalogue {

/// A filter is fed frames, a strategy makes the client message of an update.
enum class StageKind { Filter, Strategy };

/// The chains in which a stage can stand, as a set.
enum class Chains : unsigned {
    None = 0,
    Time = 1,
    Spectrum = 2,
    Frame = 4,
    Response = 8,
    BlockflowTime = 16,
    BlockflowSpectrum = 32,
};

constexpr Chains operator|(Chains left, Chains right) {
    return static_cast<Chains>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}

/// True when the two sets have a chain in common.
constexpr bool intersects(Chains left, Chains right) {
    return (static_cast<unsigned>(left) & static_cast<unsigned>(right)) != 0;
}

/// One stage that the library offers.
struct Stage {
    std::string_view name;  ///< of its factory, and of the stage in a chain
    std::string_view className;
    StageKind kind;
    Chains chains;
    std::string_view meaning;
    std::span<const Option* const> options = {};
};

}  // namespace dspwavedecks::catalogue
