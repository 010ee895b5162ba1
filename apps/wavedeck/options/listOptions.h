#pragma once

#include <string>
#include <string_view>

namespace program {

/// The text of `wavedeck options`: every stage, or the one whose name may be shortened, with each option's name, type,
/// default, unit, words and meaning. Throws UsageError for a stage that isn't there.
std::string listOptions(std::string_view stage);

}  // namespace program
