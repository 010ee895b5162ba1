#pragma once

#include <algorithm>
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
    std::vector<std::string> traces;  ///< [DECK=]FILE each
    std::string sweep;                ///< file or "-"; empty: none
    std::string annotations;          ///< file; empty: none
    bool overwrite = false;           ///< replaces files that are there already

    /// Whether messages, traces or sweeps take standard output, so that the report goes elsewhere.
    bool writesToStandardOutput() const {
        const auto isDash = [](const std::string& text) { return text == "-" || text.ends_with("=-"); };
        return messages == "-" || sweep == "-" || std::any_of(traces.begin(), traces.end(), isDash);
    }
};

}  // namespace program
