#include "LiveDecks.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "Catalogue.h"
#include "LiveAddress.h"
#include "OptionValues.h"

namespace program {
namespace {

namespace catalogue = dspwavedecks::catalogue;
using nlohmann::json;

/// The folder of the page: installed beside the program, or in the source tree that it was built from.
std::string webFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto installed = program.parent_path().parent_path() / "share" / "wavedeck" / "web";
    return !error && std::filesystem::exists(installed, error) ? installed.string() : WAVEDECK_WEB_FOLDER;
}

json describeOption(const catalogue::Option& option, const std::string& value) {
    json words = json::array();
    for (const auto& word : option.words) {
        words.push_back(word.text);
    }
    json described = {{"name", option.name},
                      {"kind", option.content == catalogue::Content::TrueFalse ? "logical" : "other"},
                      {"value", valueFromText(option, value)}};
    if (!words.empty()) {
        described["words"] = std::move(words);
    }
    if (!option.unit.empty()) {
        described["unit"] = option.unit;
    }
    return described;
}

json describeDeck(const DeckSession& deck) {
    const DeckSettings settings = deck.settings();
    json stages = json::array();
    for (const auto name : settings.stages()) {
        json options = json::array();
        for (const auto* option : catalogue::findStage(name)->options) {
            if (option->giver == catalogue::Giver::Person) {
                options.push_back(describeOption(*option, settings.value(name, option->name)));
            }
        }
        stages.push_back({{"name", name}, {"options", std::move(options)}});
    }
    return {{"name", deck.name()}, {"deck", deck.name()}, {"stages", std::move(stages)}};
}

}  // namespace

LiveDecks::LiveDecks(const std::string& address, const std::vector<std::unique_ptr<DeckSession>>& decks)
    : decks_(decks) {
    const LiveAddress where = readLiveAddress(address);
    LiveServer::Settings settings;
    settings.host = where.host;
    settings.port = where.port;
    settings.webFolder = webFolder();
    server_ = std::make_unique<LiveServer>(
        settings, LiveServer::Callbacks{[this] { return describe(); },
                                        [this](const TuneRequest& request) { return tune(request); }});
}

void LiveDecks::publish(const DeckSession& deck, const std::string& event, const std::string& message,
                        const UpdateCost& cost) {
    server_->publish(std::string(deck.name()), event, message, cost);
}

void LiveDecks::endInput() {
    inputEnded_ = true;
    server_->describeAnew();
}

std::string LiveDecks::describe() const {
    json clients = json::array();
    for (const auto& deck : decks_) {
        clients.push_back(describeDeck(*deck));
    }
    // Settings from the command line may hold bytes that are no UTF-8.
    const json hello{{"type", "hello"}, {"ended", inputEnded_.load()}, {"clients", std::move(clients)}};
    return hello.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string LiveDecks::tune(const TuneRequest& request) {
    const auto deck =
        std::find_if(decks_.begin(), decks_.end(), [&](const auto& each) { return each->name() == request.client; });
    if (deck == decks_.end()) {
        return "no client `" + request.client + "`";
    }
    try {
        (*deck)->tune(request.stage, request.options);
    } catch (const std::exception& error) {
        return error.what();
    }
    if (inputEnded_) {
        const std::lock_guard lock(mutex_);
        if (std::find(tuned_.begin(), tuned_.end(), deck->get()) == tuned_.end()) {
            tuned_.push_back(deck->get());
        }
    }
    return "";
}

std::vector<DeckSession*> LiveDecks::takeTuned() {
    const std::lock_guard lock(mutex_);
    return std::exchange(tuned_, {});
}

}  // namespace program
