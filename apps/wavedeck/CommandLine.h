#pragma once

#include <string>
#include <variant>

#include "PlayCommand.h"

namespace CLI {
class App;
}

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

/// What a command line may fill in.
struct Commands {
    PlayCommand play;
    RunCommand run;
    OptionsCommand options;
};

/// Describes all commands and their options to the parser, which fills in `commands`.
void describeCommands(CLI::App& app, Commands& commands);

/// Takes the command line apart. Throws UsageError in one line.
Command parseCommandLine(int argc, const char* const* argv);

}  // namespace program
