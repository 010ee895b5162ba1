#pragma once

#include <memory>
#include <string>

#include "SignalReader.h"

namespace program {

/// How raw samples and scales are given on the command line; empty where not given.
struct InputOptions {
    std::string format;    ///< --format
    std::string rate;      ///< --rate, Hz
    std::string channels;  ///< --channels
    std::string scale;     ///< --scale, factor of every sample
};

/// Opens an INPUT of the command line: "gen:..." is a test signal; "-" and, when a format is given, every file holds
/// raw samples; any other name is a sound file. Throws UsageError.
std::unique_ptr<SignalReader> openInput(const std::string& input, const InputOptions& options);

}  // namespace program
