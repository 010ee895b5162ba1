#include "listOptions.h"

#include <algorithm>
#include <array>
#include <vector>

#include "Catalogue.h"
#include "OptionText.h"
#include "StageNames.h"
#include "TextLists.h"

namespace program {
namespace {

namespace catalogue = dspwavedecks::catalogue;

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string chainNames(catalogue::Chains chains) {
    static constexpr std::array<std::pair<catalogue::Chains, std::string_view>, 6> names{{
        {catalogue::Chains::Time, "time"},
        {catalogue::Chains::Spectrum, "spectrum"},
        {catalogue::Chains::Frame, "frame"},
        {catalogue::Chains::Response, "response"},
        {catalogue::Chains::BlockflowTime, "time with --blockflow"},
        {catalogue::Chains::BlockflowSpectrum, "spectrum with --blockflow"},
    }};
    std::vector<std::string_view> decks;
    for (const auto& [chain, name] : names) {
        if (catalogue::intersects(chains, chain)) {
            decks.push_back(name);
        }
    }
    return join(decks, ", ");
}

std::string listOption(const catalogue::Option& option, std::size_t nameWidth) {
    static constexpr std::size_t typeWidth = 20;
    static constexpr std::size_t defaultWidth = 18;
    const std::string indent(nameWidth + typeWidth + defaultWidth + 5, ' ');
    std::string shown = option.defaultValue.empty() ? "-" : std::string(option.defaultValue);
    if (!option.unit.empty() && !option.defaultValue.empty()) {
        shown += ' ' + std::string(option.unit);
    }
    std::string text = "  " + padded(std::string(option.name), nameWidth) + ' ' +
                       padded(describeType(option), typeWidth) + ' ' + padded(shown, defaultWidth) + ' ' +
                       std::string(option.meaning);
    if (option.defaultValue.empty() && !option.unit.empty()) {
        text += ", in " + std::string(option.unit);
    }
    if (option.giver == catalogue::Giver::Host) {
        text += " (given by the host)";
    } else if (option.when == catalogue::When::Setup) {
        text += " (at setup only)";
    }
    text += '\n';
    for (const auto& word : option.words) {
        text += indent + std::string(word.text);
        if (!word.meaning.empty()) {
            text += ": " + std::string(word.meaning);
        }
        text += '\n';
    }
    return text;
}

std::string listStage(const catalogue::Stage& stage) {
    std::string text = std::string(stage.name) + ": " + std::string(stage.meaning) + '\n';
    text += "  decks: " + chainNames(stage.chains) + '\n';
    std::size_t width = 0;
    for (const auto* option : stage.options) {
        width = std::max(width, option->name.size());
    }
    if (stage.options.empty()) {
        text += "  no options\n";
    }
    for (const auto* option : stage.options) {
        text += listOption(*option, width);
    }
    return text;
}

}  // namespace

std::string listOptions(std::string_view stage) {
    if (!stage.empty()) {
        std::vector<std::string_view> names;
        for (const auto& entry : catalogue::stages) {
            names.push_back(entry.name);
        }
        return listStage(*catalogue::findStage(resolveStageName(stage, names)));
    }
    std::vector<std::string> stages;
    for (const auto& entry : catalogue::stages) {
        stages.push_back(listStage(entry));
    }
    return join(stages, "\n");
}

}  // namespace program
