#include "ManualPage.h"

#include <CLI/CLI.hpp>

namespace {

/// A text as man(7) shows it: no line is taken for a request, and a hyphen stays one.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const bool begins = result.empty() || result.back() == '\n';
        if (begins && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
    }
    return result;
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fR";
}

/// An option with its value, as it is typed.
std::string typed(const CLI::Option& option) {
    const std::string name = option.get_name(option.get_positional());
    const bool takesValue = option.get_items_expected_max() > 0 && !option.get_positional();
    return bold(name) + (takesValue ? " \\fI" + escaped(option.get_type_name()) + "\\fR" : "");
}

std::string describeOptions(const CLI::App& command) {
    std::string text;
    for (const auto* option : command.get_options()) {
        text += ".TP\n" + typed(*option) + '\n' + escaped(option->get_description()) + '\n';
    }
    return text;
}

std::string describeCommand(const CLI::App& command) {
    std::string usage = bold("wavedeck " + command.get_name());
    for (const auto* option : command.get_options()) {
        if (option->get_positional()) {
            const std::string name = option->get_name(true);
            usage += option->get_required() ? ' ' + escaped(name) : " [" + escaped(name) + ']';
            usage += option->get_items_expected_max() > 1 ? "..." : "";
        }
    }
    return ".SS " + usage + "\n" + escaped(command.get_description()) + ".\n" + describeOptions(command);
}

constexpr const char* rest = R"(.SH NUMBERS
Numbers take the suffixes k, M, G, m, u and n (48k, 22.7u) and no unit; inf where something may be without limit.
.SH EXIT STATUS
.TP
.B 0
done; also when an interrupt or a broken pipe ended it early, with what was measured so far
.TP
.B 1
a spectrum failed its mask
.TP
.B 2
the command line or an input could not be used, or an output could not be written; one line on standard error says what was wrong and where
.SH EXAMPLES
.TP
A recording through the time and the spectrum deck, with a report:
.B wavedeck play recording.wav
.TP
Intermodulation of two tones:
.B wavedeck play 'gen:twotone?rate=48k&duration=2' \-\-deck spectrum \-\-set distortionType=intermodulation \-\-measure peaks,distortion
.TP
A live receiver on the display in the browser:
.B receiver | wavedeck play \- \-\-format cu8 \-\-rate 2.048M \-\-deck spectrum \-\-serve 8080
.TP
All options of the spectrum estimator:
.B wavedeck options spectrum_estimator
.SH SEE ALSO
The pages in the folder docs of the installed documents: program.md, script.md, options.md, trigger.md and
measurements/.
)";

}  // namespace

std::string manualPage(const CLI::App& app) {
    std::string text = ".TH WAVEDECK 1 \"\" \"wavedeck " WAVEDECK_VERSION "\" \"User Commands\"\n.SH NAME\n";
    text += "wavedeck \\- " + escaped(app.get_description()) + "\n.SH SYNOPSIS\n";
    std::string commands;
    for (const auto* command : app.get_subcommands({})) {
        text += ".B wavedeck " + command->get_name() + "\n[OPTIONS] ...\n.br\n";
        commands += describeCommand(*command);
    }
    return text + ".SH COMMANDS\n" + commands + ".SH OPTIONS\n" + describeOptions(app) + rest;
}
