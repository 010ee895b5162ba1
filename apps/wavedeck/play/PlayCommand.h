#pragma once

#include <optional>
#include <string>
#include <vector>

#include "openInput.h"

namespace program {

/// `wavedeck play`: texts as typed.
struct PlayCommand {
    std::vector<std::string> inputs;
    InputOptions inputOptions;
    std::vector<std::string> decks;
    std::vector<std::string> settings;   ///< [STAGE.]NAME=VALUE each
    std::optional<std::string> measure;  ///< names with commas between them
    std::string frame = "1024";          ///< samples
    std::string updates = "20";          ///< Hz
    std::string spanTime;                ///< s
    bool realtime = false;
    bool blockflow = false;
    std::string speed;     ///< times real time, or "max"; empty: as fast as it goes, in real time when served
    std::string serve;     ///< [HOST:]PORT; empty: no display
    std::string messages;  ///< file or "-"; empty: none
    std::string report = "text";
};

}  // namespace program
