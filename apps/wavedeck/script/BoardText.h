#pragma once

#include <optional>
#include <string>
#include <vector>

#include "wavedeck/WaveDeckClientSettings.h"

namespace program {

/// A board entry as JSON: a record field by field under its own field names, a list or a plain value as such. Nothing
/// when there is no entry of that key. An entry of a type that has no text gives {"type": NAME}.
std::optional<std::string> boardEntryAsJson(const wavedeck::WaveDeckClientSettings& board, const std::string& key);

}  // namespace program
