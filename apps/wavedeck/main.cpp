#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "CommandLine.h"
#include "PlaySession.h"
#include "ScriptRunner.h"
#include "StopRequest.h"
#include "UsageError.h"
#include "listOptions.h"

namespace {

enum ExitStatus { done = 0, limitFailed = 1, badInput = 2 };

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

int execute(const program::PrintCommand& command) {
    print(command.text);
    return done;
}

int execute(const program::OptionsCommand& command) {
    print(program::listOptions(command.stage));
    return done;
}

int execute(const program::RunCommand& command) {
    program::runScript(command.script);
    return done;
}

int execute(const program::PlayCommand& command) {
    program::PlaySession session(command);
    session.play();
    const auto report = session.report();
    for (const auto& warning : report.warnings) {
        std::fprintf(stderr, "wavedeck: warning: %s\n", warning.c_str());
    }
    const auto text = command.report == "json" ? program::reportAsJson(report) : program::reportAsText(report);
    std::fputs(text.c_str(), command.writesToStandardOutput() ? stderr : stdout);
    if (!session.fault().empty()) {
        std::fprintf(stderr, "wavedeck: %s\n", session.fault().c_str());
        return badInput;
    }
    return session.limitFailed() ? limitFailed : done;
}

}  // namespace

int main(int argc, char** argv) {
    program::StopRequest::install();
    try {
        const auto command = program::parseCommandLine(argc, argv);
        return std::visit([](const auto& chosen) { return execute(chosen); }, command);
    } catch (const std::bad_alloc&) {
        std::fputs("wavedeck: what was asked for needs more memory than there is\n", stderr);
    } catch (const std::length_error&) {
        std::fputs("wavedeck: what was asked for needs more memory than any machine has\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "wavedeck: %s\n", error.what());
    }
    return badInput;
}
