#include "DeckSettings.h"

#include <algorithm>

#include "Catalogue.h"
#include "DeckPresets.h"
#include "OptionText.h"
#include "StageNames.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

namespace catalogue = dspwavedecks::catalogue;

const catalogue::Option* findOption(std::string_view stage, std::string_view option) {
    const auto* entry = catalogue::findStage(stage);
    return entry == nullptr ? nullptr : catalogue::findOption(*entry, option);
}

/// The stages of all decks, each once.
std::vector<std::string_view> stagesOf(const std::vector<DeckSettings>& decks) {
    std::vector<std::string_view> stages;
    for (const auto& deck : decks) {
        for (const auto stage : deck.stages()) {
            if (std::find(stages.begin(), stages.end(), stage) == stages.end()) {
                stages.push_back(stage);
            }
        }
    }
    return stages;
}

std::string differences(std::string_view name, const std::vector<std::string_view>& stages) {
    const auto& first = *findOption(stages.front(), name);
    const bool same = std::all_of(stages.begin(), stages.end(), [&](std::string_view stage) {
        const auto& option = *findOption(stage, name);
        return option.meaning == first.meaning && option.unit == first.unit && option.kind == first.kind;
    });
    if (same) {
        return "";
    }
    std::vector<std::string> meanings;
    for (const auto stage : stages) {
        meanings.push_back(std::string(stage) + " (" + std::string(findOption(stage, name)->meaning) + ")");
    }
    return "--set " + std::string(name) + ": reaches stages where it means different things: " + join(meanings, ", ");
}

}  // namespace

bool DeckSettings::has(std::string_view stage, std::string_view option) const {
    return std::find(stages_.begin(), stages_.end(), stage) != stages_.end() && findOption(stage, option) != nullptr;
}

void DeckSettings::choose(std::string_view stage, std::string_view option, const std::string& text) {
    streamplug::interfaces::device::PropertyList checked;
    addOptionFromText(*findOption(stage, option), text, checked);
    settings_[std::string(stage)].insert_or_assign(std::string(option), Setting{text, true});
}

void DeckSettings::preset(std::string_view stage, std::string_view option, const std::string& text) {
    auto& setting = settings_[std::string(stage)][std::string(option)];
    if (!setting.chosen) {
        setting = {text, false};
    }
}

bool DeckSettings::isChosen(std::string_view stage, std::string_view option) const {
    const auto settings = settings_.find(stage);
    if (settings == settings_.end()) {
        return false;
    }
    const auto setting = settings->second.find(option);
    return setting != settings->second.end() && setting->second.chosen;
}

std::string DeckSettings::value(std::string_view stage, std::string_view option) const {
    if (const auto settings = settings_.find(stage); settings != settings_.end()) {
        if (const auto setting = settings->second.find(option); setting != settings->second.end()) {
            return setting->second.text;
        }
    }
    return std::string(findOption(stage, option)->defaultValue);
}

streamplug::interfaces::device::PropertyList DeckSettings::properties(std::string_view stage) const {
    streamplug::interfaces::device::PropertyList list;
    if (const auto settings = settings_.find(stage); settings != settings_.end()) {
        for (const auto& [name, setting] : settings->second) {
            addOptionFromText(*findOption(stage, name), setting.text, list);
        }
    }
    return list;
}

std::string applySetting(const std::string& setting, std::vector<DeckSettings>& decks) {
    const auto equals = setting.find('=');
    if (equals == std::string::npos) {
        throw UsageError("--set " + setting + ": is not of the form [STAGE.]NAME=VALUE");
    }
    const std::string path = setting.substr(0, equals);
    const std::string text = setting.substr(equals + 1);
    const auto dot = path.rfind('.');
    const std::string name = dot == std::string::npos ? path : path.substr(dot + 1);
    auto stages = stagesOf(decks);
    try {
        if (dot != std::string::npos) {
            stages = {resolveStageName(path.substr(0, dot), stages)};
        }
        std::erase_if(stages, [&](std::string_view stage) { return findOption(stage, name) == nullptr; });
        if (stages.size() > 1) {
            std::erase_if(stages, [&](std::string_view stage) { return isLinked(stage, name); });
        }
        if (stages.empty()) {
            throw UsageError("no such option; `wavedeck options` lists them");
        }
        for (const auto stage : stages) {
            if (findOption(stage, name)->giver == catalogue::Giver::Host) {
                throw UsageError("the option follows from the signals and cannot be set");
            }
            for (auto& deck : decks) {
                if (deck.has(stage, name)) {
                    deck.choose(stage, name, text);
                }
            }
        }
    } catch (const UsageError& error) {
        throw UsageError("--set " + path + ": " + error.what());
    }
    return differences(name, stages);
}

}  // namespace program
