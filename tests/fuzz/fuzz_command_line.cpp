// The command line: one argument a line, and the settings that it asks for.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "CommandLine.h"
#include "Deck.h"
#include "DeckSettings.h"
#include "LimitedAllocation.h"
#include "LiveAddress.h"
#include "Measures.h"
#include "TextLists.h"
#include "UsageError.h"
#include "listOptions.h"

namespace {

void settle(const program::PlayCommand& play) {
    std::vector<program::DeckSettings> decks;
    for (const auto& name : play.decks.empty() ? program::defaultDecks() : play.decks) {
        const auto stages = program::findDeck(name, false).stages;
        decks.emplace_back(std::vector<std::string_view>(stages.begin(), stages.end()));
    }
    if (play.measure) {
        program::switchMeasuresOn(*play.measure, decks);
    }
    for (const auto& setting : play.settings) {
        program::applySetting(setting, decks);
    }
    for (const auto& deck : decks) {
        for (const auto stage : deck.stages()) {
            deck.properties(stage);
        }
    }
    if (!play.serve.empty()) {
        program::readLiveAddress(play.serve);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    const auto arguments = program::split(std::string(reinterpret_cast<const char*>(data), size), '\n');
    std::vector<const char*> argv{"wavedeck"};
    for (const auto& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    try {
        const auto command = program::parseCommandLine(static_cast<int>(argv.size()), argv.data());
        if (const auto* play = std::get_if<program::PlayCommand>(&command)) {
            settle(*play);
        } else if (const auto* options = std::get_if<program::OptionsCommand>(&command)) {
            program::listOptions(options->stage);
        }
    } catch (const program::UsageError&) {
    }
    return 0;
}
