#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "Catalogue.h"
#include "DeckSession.h"
#include "OptionText.h"
#include "OptionValues.h"
#include "UsageError.h"

namespace program {

namespace catalogue = dspwavedecks::catalogue;

DeckSettings DeckSession::settings() const {
    const std::lock_guard lock(mutex_);
    return settings_;
}

void DeckSession::tune(const std::string& stage, const nlohmann::json& options) {
    const std::lock_guard lock(mutex_);
    DeckSettings next = settings_;
    for (const auto& [name, value] : options.items()) {
        if (!next.has(stage, name)) {
            throw UsageError(stage + ": no option `" + name + "` in this deck");
        }
        const auto& option = *catalogue::findOption(*catalogue::findStage(stage), name);
        if (option.giver == catalogue::Giver::Host) {
            throw UsageError(name + ": follows from the signals and cannot be set");
        }
        const auto text = textFromValue(option, value);
        if (!text) {
            // The stage's own words for a value of a kind that it does not take.
            streamplug::interfaces::device::PropertyList asItStands;
            addAsItStands(name, value, asItStands);
            client_.tune(stage, asItStands);
            throw UsageError(name + ": not " + describeType(option));
        }
        next.choose(stage, name, *text);
    }
    apply(std::move(next));
}

void DeckSession::setCenterFrequencies(const std::vector<double>& frequencies) {
    const std::lock_guard lock(mutex_);
    facts_.centerFrequencies = frequencies;
    apply(settings_);
}

void DeckSession::apply(DeckSettings next) {
    applyPresets(deck_, facts_, next);
    try {
        send(next, settings_);
    } catch (const std::exception&) {
        send(settings_, next);
        throw;
    }
    settings_ = std::move(next);
}

void DeckSession::send(const DeckSettings& settings, const DeckSettings& previous) {
    for (const auto stage : settings.stages()) {
        streamplug::interfaces::device::PropertyList changed;
        for (const auto* option : catalogue::findStage(stage)->options) {
            const std::string value = settings.value(stage, option->name);
            if (value != previous.value(stage, option->name) && intersects(option->when, catalogue::When::Tune)) {
                addOptionFromText(*option, value, changed);
            }
        }
        if (changed.begin() != changed.end()) {
            client_.tune(std::string(stage), changed);
        }
    }
}

void DeckSession::replay() {
    client_.setReplaying(true);
    client_.replay();
    client_.setReplaying(false);
}

}  // namespace program
