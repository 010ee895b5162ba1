#pragma once

#include <string>

namespace CLI {
class App;
}

/// The manual page of a described command line, in the language of man(7).
std::string manualPage(const CLI::App& app);
