#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace program {

/// The titles of the columns from the two lines above the numbers: the line right above, if it has as many cells; if
/// all of these are units in brackets, (ms) or [V], behind the names in the line above it. Of a line with another count
/// of cells the first alone, where that says that the first column holds times.
std::vector<std::string> tableTitles(std::vector<std::string> twoAbove, std::vector<std::string> above,
                                     std::size_t columns);

}  // namespace program
