#pragma once

#include <span>
#include <string>
#include <string_view>

namespace program {

/// The one name among those given that a person's shortened name stands for: the name itself, else the only one that
/// begins with it, else the only one that contains it.
/// Throws UsageError when none or several fit, naming them.
std::string_view resolveStageName(std::string_view shortened, std::span<const std::string_view> names);

}  // namespace program
