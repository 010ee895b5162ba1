#pragma once

#include <memory>
#include <string>
#include <vector>

#include "SignalReader.h"

namespace program {

/// How inputs are to be read, as given on the command line; texts are empty where not given.
struct InputOptions {
    std::string format = {};    ///< --format
    std::string rate = {};      ///< --rate, Hz
    std::string channels = {};  ///< --channels
    std::string scale = {};     ///< --scale, factor of every sample
    std::string center = {};    ///< --center, Hz, of inputs whose kind names no centre frequency
    bool isIq = false;          ///< --iq: pairs of channels or columns are in-phase and quadrature parts
    std::string seek = {};      ///< --seek, s
    std::string duration = {};  ///< --duration, s
    bool loop = false;          ///< --loop
    bool verify = false;        ///< --verify: compares the checksums that recordings tell
};

/// Opens an INPUT of the command line. "gen:..." is a test signal; "-" and, when a format is given, every file holds
/// raw samples or a table; files of SigMF, raw samples and tables are known by their extensions; any other name is a
/// sound file. Throws UsageError.
std::unique_ptr<SignalReader> openInput(const std::string& input, const InputOptions& options);

/// Throws UsageError when any of the options but --rate is given, saying why there is no use for it.
void refuseInputOptions(const InputOptions& options, const std::string& why);

/// Throws UsageError when an option is given that none of the inputs has a use for, or standard input is to be two of
/// them.
void refuseIdleOptions(const std::vector<std::string>& inputs, const InputOptions& options);

}  // namespace program
