#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "ScriptRunner.h"
#include "StageLibraryPath.h"
#include "StandardStreams.h"
#include "UsageError.h"

namespace program {
namespace {

std::string readAll(const std::string& path) {
    if (path == "-") {
        return {std::istreambuf_iterator<char>(std::cin), {}};
    }
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        throw UsageError(std::strerror(errno));
    }
    return text;
}

}  // namespace

void runScript(const std::string& path) {
    try {
        const auto script = parseScript(readAll(path));
        const wavedeck::driver::StageLibrary library(stageLibraryPath());
        ScriptRunner runner(script, library);
        for (std::size_t step = 0; step < runner.numSteps(); ++step) {
            if (!StandardStreams::write(runner.run(step) + '\n')) {
                return;  // nobody reads the results any more
            }
        }
    } catch (const UsageError& error) {
        throw UsageError((path == "-" ? "standard input" : path) + ": " + error.what());
    }
}

}  // namespace program
