#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "streamplug/PropertyList.h"

namespace program {

/// The options of a deck's stages that differ from the stages' own defaults, as text in the form that a person types. A
/// person's choice stands before what the program presets.
class DeckSettings {
public:
    /// stages  in the order of the chain, names of the catalogue
    explicit DeckSettings(std::vector<std::string_view> stages) : stages_(std::move(stages)) {}

    const std::vector<std::string_view>& stages() const { return stages_; }

    /// Whether the deck holds the stage and the stage has the option.
    bool has(std::string_view stage, std::string_view option) const;

    /// Stores a person's choice. Throws UsageError when the option does not take the text.
    void choose(std::string_view stage, std::string_view option, const std::string& text);

    /// Stores the program's own value, unless a person has chosen one.
    void preset(std::string_view stage, std::string_view option, const std::string& text);

    /// Whether a person has chosen the option's value.
    bool isChosen(std::string_view stage, std::string_view option) const;

    /// The text in force: chosen, preset, or the stage's default.
    std::string value(std::string_view stage, std::string_view option) const;

    /// All settings of a stage as its options.
    streamplug::interfaces::device::PropertyList properties(std::string_view stage) const;

private:
    struct Setting {
        std::string text;
        bool chosen;
    };

    std::vector<std::string_view> stages_;
    std::map<std::string, std::map<std::string, Setting, std::less<>>, std::less<>> settings_;
};

/// Applies `--set [STAGE.]NAME=VALUE` to the decks: to the one stage that is named (shortened as long as it is unique),
/// else to every stage that has the option. Returns a warning where the option means different things in those stages,
/// else an empty text. Throws UsageError for an unknown stage, option or value, and for options that the host gives.
std::string applySetting(const std::string& setting, std::vector<DeckSettings>& decks);

}  // namespace program
