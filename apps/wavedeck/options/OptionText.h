#pragma once

#include <string>
#include <string_view>

#include "Option.h"
#include "streamplug/PropertyList.h"

namespace program {

/// Turns the text that a person typed for an option into the value that the option's reader takes, and appends it to
/// the list. Lists are written `a,b,c`; numbers take SI suffixes; words must be among the option's words.
/// Throws UsageError "NAME: what is wrong and what is allowed".
void addOptionFromText(const dspwavedecks::catalogue::Option& option, std::string_view text,
                       streamplug::interfaces::device::PropertyList& list);

/// What a person may type for the option: "number", "whole numbers a,b,c", "word", ...
std::string describeType(const dspwavedecks::catalogue::Option& option);

}  // namespace program
