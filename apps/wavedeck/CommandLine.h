#pragma once

#include <string>
#include <variant>

#include "PlayCommand.h"

namespace program {

/// `wavedeck run`.
struct RunCommand {
    std::string script;
};

/// `wavedeck options`.
struct OptionsCommand {
    std::string stage;  ///< may be shortened; empty: all
};

/// What was asked for and is answered by printing a text: --help and --version.
struct PrintCommand {
    std::string text;
};

using Command = std::variant<PlayCommand, RunCommand, OptionsCommand, PrintCommand>;

/// Takes the command line apart. Throws UsageError in one line.
Command parseCommandLine(int argc, const char* const* argv);

}  // namespace program
