#pragma once

#include <boost/any.hpp>
#include <string>

#include "wavedeck/WaveDeckClientSettings.h"

namespace program {

/// The record under a key of the board; null when there is none of that type.
template <typename Record>
const Record* findRecord(const wavedeck::WaveDeckClientSettings& board, const std::string& key) {
    const auto* entry = board.find(key);
    return entry == nullptr ? nullptr : boost::any_cast<Record>(entry);
}

}  // namespace program
