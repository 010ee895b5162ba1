#pragma once

#include <string>

namespace CLI {
class App;
}

/// A completion for bash of a described command line: commands, options, and of their values those that are words.
std::string bashCompletion(const CLI::App& app);
