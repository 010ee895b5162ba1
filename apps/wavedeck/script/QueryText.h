#pragma once

#include <string>
#include <vector>

#include "QueryValue.h"

namespace program {

/// What a query function gave, as JSON: numbers, texts, true/false; a row or a column of numbers as a list, a matrix as
/// the list of its rows; a structure as an object, several as a list of objects. One result stands by itself, several
/// in a list; null when there is none.
std::string queryAsJson(const std::vector<wavedeck::driver::QueryValue>& results);

}  // namespace program
