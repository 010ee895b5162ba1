#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <variant>

#include "CommandLine.h"
#include "PlaySession.h"
#include "ScriptRunner.h"
#include "StandardStreams.h"
#include "StopRequest.h"
#include "listOptions.h"

namespace {

enum ExitStatus { done = 0, limitFailed = 1, badInput = 2 };

int execute(const program::PrintCommand& command) {
    program::StandardStreams::write(command.text);
    return done;
}

int execute(const program::OptionsCommand& command) {
    program::StandardStreams::write(program::listOptions(command.stage));
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
        program::StandardStreams::complain("warning: " + warning);
    }
    const auto text = command.report == "json" ? program::reportAsJson(report) : program::reportAsText(report);
    if (command.writesToStandardOutput()) {
        std::fputs(text.c_str(), stderr);
    } else {
        program::StandardStreams::write(text);
    }
    if (!session.fault().empty()) {
        program::StandardStreams::complain(session.fault());
        return badInput;
    }
    return session.limitFailed() ? limitFailed : done;
}

}  // namespace

int main(int argc, char** argv) {
    program::StandardStreams::claim();
    program::StopRequest::install();
    try {
        const auto command = program::parseCommandLine(argc, argv);
        return std::visit([](const auto& chosen) { return execute(chosen); }, command);
    } catch (const std::bad_alloc&) {
        std::fputs("wavedeck: what was asked for needs more memory than there is\n", stderr);
    } catch (const std::length_error&) {
        std::fputs("wavedeck: what was asked for needs more memory than any machine has\n", stderr);
    } catch (const std::exception& error) {
        program::StandardStreams::complain(error.what());
    }
    return badInput;
}
