#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "UsageError.h"

namespace program {
namespace {

/// Refuses a value that is there and empty, as of a variable of the shell that is not set.
std::string refuseEmpty(const std::string& text) {
    return text.empty() ? "is empty" : "";
}

/// A list option that takes one value each time it is given, so that it cannot swallow the inputs behind it.
void addRepeated(CLI::App& app, const char* name, std::vector<std::string>& values, const char* meaning,
                 const char* valueName) {
    app.add_option(name, values, meaning)->type_name(valueName)->allow_extra_args(false)->check(refuseEmpty);
}

CLI::Option* addText(CLI::App& app, const char* name, std::string& value, const char* meaning, const char* valueName) {
    return app.add_option(name, value, meaning)->type_name(valueName)->check(refuseEmpty);
}

void describePlay(CLI::App& app, PlayCommand& play) {
    app.add_option(
           "INPUT", play.inputs,
           "a sound file, a SigMF recording, a CSV table, raw samples (a file with --format or a telling extension, "
           "or - for standard input), or a test signal gen:NAME?key=value&...")
        ->required()
        ->check(refuseEmpty);
    addText(app, "--format", play.inputOptions.format,
            "raw samples: f32 f64 s8 s16 s32 u8 u16 u32, c before it for complex, _be behind it for big-endian; or csv",
            "FORMAT");
    addText(app, "--rate", play.inputOptions.rate,
            "sample rate of raw samples and tables, of SigMF recordings that tell none, of filters", "HZ");
    addText(app, "--channels", play.inputOptions.channels, "raw samples: channels (1)", "N");
    addText(app, "--scale", play.inputOptions.scale, "multiplies every sample of a file (1)", "FACTOR");
    app.add_flag("--iq", play.inputOptions.isIq, "sound files, tables: takes pairs of channels as I and Q");
    addText(app, "--center", play.inputOptions.center, "centre frequency, added to the frequencies shown", "HZ");
    addText(app, "--seek", play.inputOptions.seek, "begins so far into the inputs", "S");
    addText(app, "--duration", play.inputOptions.duration, "plays so much of the inputs", "S");
    app.add_flag("--loop", play.inputOptions.loop, "plays the inputs over and over");
    app.add_flag("--verify", play.inputOptions.verify,
                 "SigMF recordings: compares the samples with their checksum first");
    addRepeated(app, "--deck", play.decks, "time, spectrum, frame, response; by default time and spectrum", "DECK");
    addRepeated(app, "--set", play.settings, "sets an option of the stages; `wavedeck options` lists them",
                "[STAGE.]NAME=VALUE");
    app.add_option("--measure", play.measure,
                   "measurements to switch on: stats,peaks,bilevel,trigger,channel,distortion,"
                   "phasenoise,mask; none switches all off")
        ->type_name("LIST");
    addText(app, "--frame", play.frame, "samples of a frame (1024)", "N");
    addText(app, "--updates", play.updates, "updates a second of stream time (20)", "HZ");
    addText(app, "--span-time", play.spanTime, "stretch of time that is shown and measured (5000 samples)", "S");
    addText(app, "--speed", play.speed, "1 is real time, 2 twice as fast, max (the default) as fast as it goes",
            "FACTOR|max");
    app.add_flag("--realtime", play.realtime, "the same as --speed 1");
    app.add_flag("--blockflow", play.blockflow, "plays the inputs as a block-diagram simulation of whole frames");
    addText(app, "--serve", play.serve,
            "serves the live display in the browser, at 127.0.0.1:8080 unless told otherwise; plays in real time",
            "[HOST:]PORT");
    addText(app, "--messages", play.messages, "writes each client message as a line of JSON; - is standard output",
            "FILE|-");
    addRepeated(app, "--traces", play.traces,
                "writes what a deck shows at the end as a CSV table; - is standard output", "[DECK=]FILE|-");
    addText(app, "--sweep", play.sweep,
            "writes the spectrum of each update as a line date, time, hz_low, hz_high, hz_step, samples, dB...",
            "FILE|-");
    addText(app, "--annotations", play.annotations,
            "writes SigMF metadata with spectral peaks and mask failures as annotations", "FILE");
    app.add_flag("--overwrite", play.overwrite, "lets --traces, --sweep and --annotations replace files");
    addText(app, "--report", play.report, "form of the report at the end: text or json (text)", "FORM");
}

/// CLI11's texts may run over lines; the program's are one line.
std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && text.back() == ' ') {
        text.pop_back();
    }
    return text;
}

/// Whether a text may follow --serve: a port, or a host with one.
bool isAddress(const std::string& text) {
    const auto port = text.substr(text.rfind(':') + 1);
    return !port.empty() && port.find_first_not_of("0123456789") == std::string::npos;
}

/// The arguments with the usual port where --serve stands without one, in the reverse order that the parser takes.
std::vector<std::string> readArguments(int argc, const char* const* argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--serve" && (i + 1 == arguments.size() || !isAddress(arguments[i + 1]))) {
            arguments[i] = "--serve=8080";
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

}  // namespace

void describeCommands(CLI::App& app, Commands& commands) {
    app.name("wavedeck");
    app.description("Measures signals: spectra, time displays, and measurements on them.");
    app.require_subcommand(1);
    app.set_version_flag("--version", WAVEDECK_VERSION);
    describePlay(*app.add_subcommand("play", "plays signals through decks and reports what was measured"),
                 commands.play);
    app.add_subcommand("run", "runs a script: a client, its chain and its steps; one JSON result a step")
        ->add_option("SCRIPT", commands.run.script, "a JSON file, or - for standard input")
        ->required();
    app.add_subcommand("options", "lists every option of every stage, or of one")
        ->add_option("STAGE", commands.options.stage, "name of the stage, shortened as long as it is unique");
}

Command parseCommandLine(int argc, const char* const* argv) {
    CLI::App app;
    Commands commands;
    describeCommands(app, commands);
    try {
        app.parse(readArguments(argc, argv));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        return PrintCommand{chosen.empty() ? app.help() : chosen.front()->help("wavedeck")};
    } catch (const CLI::CallForVersion& version) {
        return PrintCommand{std::string(version.what()) + '\n'};
    } catch (const CLI::ParseError& error) {
        throw UsageError(oneLine(error.what()) + "; see wavedeck --help");
    }
    if (app.got_subcommand("play")) {
        return commands.play;
    }
    if (app.got_subcommand("run")) {
        return commands.run;
    }
    return commands.options;
}

}  // namespace program
