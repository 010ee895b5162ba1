#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "SignalReader.h"

namespace program {

/// SigMF metadata that describe an input, to be written to a file: those of a SigMF recording with all that they hold,
/// pointed at its samples; of raw samples new ones; of any other input new ones that say that they have no samples of
/// their own. Throws UsageError when the recording's metadata cannot be read.
/// path  where they will be written
nlohmann::ordered_json recordingMetadata(const std::string& input, const SignalFacts& facts, const std::string& path);

}  // namespace program
