#include "BashCompletion.h"

#include <CLI/CLI.hpp>
#include <map>
#include <set>

#include "Catalogue.h"
#include "Deck.h"
#include "Measures.h"
#include "SampleFormat.h"
#include "TestSignals.h"
#include "TextLists.h"

namespace {

namespace catalogue = dspwavedecks::catalogue;

/// What may stand behind an option, by the name that the command line gives its value.
std::map<std::string, std::string> wordsOfValues() {
    return {{"DECK", program::join(program::deckNames(false), " ")},
            {"FORMAT", program::join(program::sampleFormats(), " ") + " csv"},
            {"LIST", program::join(program::measureNames(), " ") + " none"},
            {"FORM", "text json"}};
}

/// Names of the options that a person may set, once each, and `STAGE.NAME=` of every stage that has some.
std::string settings() {
    std::set<std::string> names;
    std::set<std::string> ofStages;
    for (const auto& stage : catalogue::stages) {
        for (const auto* option : stage.options) {
            if (option->giver == catalogue::Giver::Person) {
                names.insert(std::string(option->name) + '=');
                ofStages.insert(std::string(stage.name) + '.' + std::string(option->name) + '=');
            }
        }
    }
    std::string text;
    for (const auto* group : {&names, &ofStages}) {
        for (const auto& name : *group) {
            text += (text.empty() ? "" : " ") + name;
        }
    }
    return text;
}

std::string stageNames() {
    std::string names;
    for (const auto& stage : catalogue::stages) {
        names += (names.empty() ? "" : " ") + std::string(stage.name);
    }
    return names;
}

std::string inputNames() {
    std::string names;
    for (const auto name : program::testSignalNames()) {
        names += (names.empty() ? "gen:" : " gen:") + std::string(name);
    }
    return names;
}

std::string longOptions(const CLI::App& command) {
    std::string names;
    for (const auto* option : command.get_options()) {
        if (!option->get_lnames().empty()) {
            names += (names.empty() ? "--" : " --") + option->get_lnames().front();
        }
    }
    return names;
}

/// A line of the completion: words for what is matched by a pattern of the shell.
std::string words(const std::string& pattern, const std::string& list, const std::string& after = "") {
    return "    " + pattern + ") COMPREPLY=($(compgen -W '" + list + "' -- \"$word\"))" + after + ";;\n";
}

std::string valuesOf(const CLI::App& command) {
    const auto known = wordsOfValues();
    std::string text;
    for (const auto* option : command.get_options()) {
        if (option->get_lnames().empty() || option->get_items_expected_max() == 0) {
            continue;
        }
        const std::string pattern = command.get_name() + ":--" + option->get_lnames().front();
        const std::string value = option->get_type_name();
        const auto list = known.find(value);
        if (value == "LIST") {
            text += "    " + pattern + ") _wavedeck_list '" + list->second + "';;\n";
        } else if (value == "[STAGE.]NAME=VALUE") {
            text += words(pattern, settings(), "; compopt -o nospace 2>/dev/null");
        } else if (list != known.end()) {
            text += words(pattern, list->second);
        } else if (value.find("FILE") != std::string::npos) {
            text += "    " + pattern + ") COMPREPLY=($(compgen -f -- \"$word\"));;\n";
        } else {
            text += "    " + pattern + ") ;;\n";
        }
    }
    return text;
}

}  // namespace

std::string bashCompletion(const CLI::App& app) {
    std::string commands;
    std::string values;
    std::string options;
    for (const auto* command : app.get_subcommands({})) {
        commands += (commands.empty() ? "" : " ") + command->get_name();
        values += valuesOf(*command);
        options += words(command->get_name() + ":-*", longOptions(*command));
    }
    return R"(# Completion of wavedeck for bash.
# Completes the last of the words of a list with commas between them.
_wavedeck_list() {
  local before=
  [[ $word == *,* ]] && before=${word%,*},
  COMPREPLY=($(compgen -P "$before" -W "$1" -- "${word##*,}"))
}
_wavedeck() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]}
  # Names of test signals hold a colon, which is a word of its own.
  [[ $before == : && ${COMP_WORDS[COMP_CWORD-2]} == gen ]] && before=gen:
  [[ $word == : && $before == gen ]] && word= before=gen:
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    COMPREPLY=($(compgen -W ')" +
           commands + ' ' + longOptions(app) + R"(' -- "$word"))
    return
  fi
  case $command:$before in
)" + values +
           R"(    play:gen:) COMPREPLY=($(compgen -W ')" + program::join(program::testSignalNames(), " ") +
           R"(' -- "$word"));;
    *) case $command:$word in
)" + options +
           words("options:*", stageNames()) + R"(    play:g*) COMPREPLY=($(compgen -f -W ')" + inputNames() +
           R"(' -- "$word"));;
    *) COMPREPLY=($(compgen -f -- "$word"));;
    esac;;
  esac
}
complete -o filenames -F _wavedeck wavedeck
)";
}
