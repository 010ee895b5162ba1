#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "BashCompletion.h"
#include "CommandLine.h"
#include "ManualPage.h"

namespace {

/// Writes both files; tells whether that went well.
bool writePages(const std::filesystem::path& folder) {
    CLI::App app;
    program::Commands commands;
    program::describeCommands(app, commands);
    std::ofstream page(folder / "wavedeck.1");
    page << manualPage(app);
    std::ofstream completion(folder / "wavedeck.bash");
    completion << bashCompletion(app);
    return page.flush() && completion.flush();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("write_command_pages FOLDER: writes wavedeck.1 and wavedeck.bash\n", stderr);
        return 2;
    }
    try {
        return writePages(argv[1]) ? 0 : 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "write_command_pages: %s\n", error.what());
        return 2;
    }
}
