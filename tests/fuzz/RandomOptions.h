#pragma once

#include "InputBytes.h"
#include "Option.h"
#include "streamplug/PropertyList.h"

namespace fuzz {

/// An option list for a stage with those options: names of its own and others, kinds right and wrong, values of any
/// size.
streamplug::interfaces::device::PropertyList randomOptions(
    InputBytes& input, std::span<const dspwavedecks::catalogue::Option* const> options);

}  // namespace fuzz
