#pragma once

#include <string>

namespace program {

/// Where the library of stages is: in the folder `lib` beside the program's own folder, as a build and an installation
/// lay it, else by its bare name, wherever the dynamic loader finds it.
std::string stageLibraryPath();

}  // namespace program
