#pragma once

#include <string_view>

namespace program {

/// How a figure of the report is defined, in words and formulas.
/// section  key of its part of the report: "input", "deck" or that of a measurement; of a table TABLE
/// figure   key of the figure; of a table's column TABLE.COLUMN
/// returns an empty text for what is no figure but a name, a setting, or says itself what it is
std::string_view findFigureDefinition(std::string_view section, std::string_view figure);

}  // namespace program
