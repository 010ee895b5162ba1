#include "ScriptRunner.h"

#include <algorithm>
#include <array>
#include <boost/core/demangle.hpp>
#include <exception>
#include <limits>
#include <string_view>

#include "BoardText.h"
#include "DriverError.h"
#include "JsonText.h"
#include "QueryText.h"
#include "ScriptClient.h"
#include "ScriptOptions.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

using streamplug::interfaces::device::PropertyList;
using wavedeck::driver::DeckClient;

bool isBlockflowStage(const std::string& name) {
    return name.starts_with("bf_");
}

/// The name of a stage that the library makes, with the ending of its kind.
const std::string& readFactory(const ScriptValue& value, std::string_view ending,
                               const wavedeck::driver::StageLibrary& library) {
    const auto& name = value.text("the name of a stage");
    if (!name.ends_with(ending) || !library.offers(name)) {
        value.refuse("the name of a stage of the library that ends in " + std::string(ending));
    }
    return name;
}

wavedeck::driver::ChainKind readKind(const ScriptValue& script, const wavedeck::driver::StageLibrary& library) {
    const auto& stages = script.require("chain").list("a list of stages");
    const bool anyBlockflow = std::any_of(stages.begin(), stages.end(), [](const ScriptValue& stage) {
        return isBlockflowStage(stage.require("stage").text("the name of a stage"));
    });
    return wavedeck::driver::chainKindOf(readFactory(script.require("strategy"), "_strategy", library), anyBlockflow);
}

std::vector<int> readInts(const ScriptValue& value) {
    std::vector<int> numbers;
    for (const auto& element : value.list("a list of whole numbers")) {
        numbers.push_back(
            static_cast<int>(element.wholeNumber(std::numeric_limits<int>::min(), std::numeric_limits<int>::max())));
    }
    return numbers;
}

/// Windows in the place of those of the trigger engine: start and end of each, NaN for none.
std::vector<double> readWindows(const ScriptValue& engine) {
    static constexpr std::array<std::string_view, 1> members{"windows"};
    engine.allowOnly(members);
    std::vector<double> bounds;
    for (const auto& window : engine.require("windows").list("a list of windows")) {
        if (window.isNull()) {
            bounds.resize(bounds.size() + 2, std::numeric_limits<double>::quiet_NaN());
            continue;
        }
        constexpr auto expected = "a window [start, end], or null";
        if (window.list(expected).size() != 2) {
            window.refuse(expected);
        }
        bounds.push_back(window.list()[0].number());
        bounds.push_back(window.list()[1].number());
    }
    return bounds;
}

/// The member of a step that says what it does: each step has one.
const ScriptValue::Members::value_type& verbOf(const ScriptValue& step) {
    static constexpr std::array<std::string_view, 11> verbs{"setup",  "tune",   "send",   "rollback", "reset", "size",
                                                            "client", "replay", "update", "query",    "frame"};
    static constexpr std::array<std::string_view, 6> others{"options", "show", "repeat", "expect", "tolerance", "note"};
    std::vector<std::string_view> allowed(verbs.begin(), verbs.end());
    allowed.insert(allowed.end(), others.begin(), others.end());
    step.allowOnly(allowed);
    const auto isVerb = [](const auto& member) {
        return std::find(verbs.begin(), verbs.end(), member.first) != verbs.end();
    };
    const auto& members = step.members("a step");
    if (std::count_if(members.begin(), members.end(), isVerb) != 1) {
        step.refuse("a step with one of " + join(verbs, ", "));
    }
    return *std::find_if(members.begin(), members.end(), isVerb);
}

PropertyList optionsOf(const ScriptValue& step) {
    const auto* options = step.find("options");
    return options == nullptr ? PropertyList() : readScriptOptions(*options);
}

}  // namespace

ScriptRunner::ScriptRunner(const ScriptValue& script, const wavedeck::driver::StageLibrary& library)
    : library_(library) {
    static constexpr std::array<std::string_view, 6> members{"client", "chain", "strategy", "watch", "steps", "note"};
    script.allowOnly(members);
    const auto& client = script.require("client");
    const auto changes = readClientChanges(client, true);
    try {
        client_ = std::make_unique<DeckClient>(readClientFacts(client, readKind(script, library)));
    } catch (const wavedeck::driver::DriverError& error) {
        throw UsageError("line " + std::to_string(client.line()) + ": " + error.what());
    }
    makeChain(script);
    for (const auto& change : changes) {
        change(*client_);
    }
    if (const auto* watch = script.find("watch")) {
        for (const auto& key : watch->list("a list of board entries")) {
            watch_.push_back(key.text());
        }
    }
    for (const auto& step : script.require("steps").list("a list of steps")) {
        steps_.push_back(readStep(step));
    }
}

void ScriptRunner::makeChain(const ScriptValue& script) {
    static constexpr std::array<std::string_view, 4> members{"stage", "options", "engine", "note"};
    for (const auto& entry : script.require("chain").list()) {
        entry.allowOnly(members);
        const auto& name = readFactory(entry.require("stage"), "_filter", library_);
        client_->addStage(name, library_.makeFilter(name), optionsOf(entry));
        if (const auto* engine = entry.find("engine")) {
            if (!name.ends_with("trigger_filter")) {
                engine->refuse("no engine, which only a trigger filter has");
            }
            client_->withInfo([bounds = readWindows(*engine)](wavedeck::WaveDeckClientInfo& info) {
                info.getClientSettings().addCustomSetting("triggerEngineWindows", bounds);
            });
        }
    }
    const auto& strategy = script.require("strategy").text();
    client_->setStrategy(strategy, library_.makeStrategy(strategy));
    client_->setKeepOutputs(true);
}

ScriptRunner::Step ScriptRunner::readStep(const ScriptValue& value) {
    Step step;
    step.take = readAction(value);
    if (const auto* shown = value.find("show")) {
        for (const auto& what : shown->list("a list of what to show")) {
            if (what.text() != "out") {
                what.refuse("\"out\"");
            }
            step.showOutputs = true;
        }
    }
    return step;
}

std::optional<std::string> ScriptRunner::readTarget(const ScriptValue& value) const {
    const auto& name = value.text("a stage of the chain or \"all\"");
    if (name == "all") {
        return std::nullopt;
    }
    const auto stages = client_->stageNames();
    if (std::find(stages.begin(), stages.end(), name) == stages.end()) {
        value.refuse("a stage of the chain or \"all\"");
    }
    return name;
}

ScriptRunner::Action ScriptRunner::readAction(const ScriptValue& value) {
    const auto& [verb, object] = verbOf(value);
    DeckClient& client = *client_;
    if (verb == "frame") {
        return readFrames(object, value.find("repeat"));
    }
    if (verb == "client") {
        return [&client, changes = readClientChanges(object, false)](Result&) {
            for (const auto& change : changes) {
                change(client);
            }
        };
    }
    if (verb == "size") {
        return [&client, numChannels = readInts(object.require("numChannels")),
                frameSize = readInts(object.require("frameSize"))](Result&) { client.resize(numChannels, frameSize); };
    }
    if (verb == "replay") {
        object.logical();
        return [&client](Result&) { client.replay(); };
    }
    if (verb == "update") {
        return readUpdate(object);
    }
    if (verb == "query") {
        return readQuery(object);
    }
    return readStageAction(verb, value);
}

ScriptRunner::Action ScriptRunner::readFrames(const ScriptValue& value, const ScriptValue* repeat) {
    constexpr long long mostFrames = 1000000;
    const auto count = repeat == nullptr ? 1 : repeat->wholeNumber(1, mostFrames);
    return [this, frame = ScriptFrame(value, client_->facts(), testSignals_), count](Result&) {
        for (long long i = 0; i < count; ++i) {
            frame.handTo(*client_);
        }
    };
}

ScriptRunner::Action ScriptRunner::readUpdate(const ScriptValue& value) {
    const bool always = !value.logical("true, or false for an update that comes with no new data too");
    return [this, always](Result& result) {
        const auto update = always ? client_->updateNow() : client_->update();
        result.event = update.event;
        if (!update.message.isNull()) {
            result.message = messageText_.write(*update.message);
        }
    };
}

ScriptRunner::Action ScriptRunner::readQuery(const ScriptValue& value) {
    const auto& name = value.text("the name of a query function");
    if (!name.ends_with("Impl") || !library_.offers(name)) {
        value.refuse("the name of a query function of the library");
    }
    return [this, function = library_.query(name)](Result& result) {
        result.query = queryAsJson(client_->query(function));
    };
}

ScriptRunner::Action ScriptRunner::readStageAction(const std::string& verb, const ScriptValue& value) {
    DeckClient& client = *client_;
    const auto& object = value.require(verb);
    const auto target = readTarget(object);
    const auto options = optionsOf(value);
    if (!target && (verb == "tune" || verb == "send")) {
        object.refuse("a stage of the chain");
    }
    if (verb == "setup") {
        if (target) {
            return [&client, stage = *target, options](Result&) { client.setup(stage, options); };
        }
        return [&client](Result&) { client.setup(); };
    }
    if (verb == "tune") {
        return [&client, stage = *target, options](Result&) { client.tune(stage, options); };
    }
    if (verb == "send") {
        return [&client, stage = *target, options](Result&) { client.sendAsIs(stage, options); };
    }
    if (verb == "rollback") {
        return [&client, target, options](Result&) {
            target ? client.rollback(*target, options) : client.rollback(options);
        };
    }
    return [&client, target](Result&) { target ? client.reset(*target) : client.reset(); };
}

std::string ScriptRunner::outputs() const {
    std::vector<std::pair<std::string, std::string>> stages;
    for (const auto& name : client_->stageNames()) {
        const auto stage = client_->stage(name);
        if (!stage->isActive() || stage->isReadOnly()) {
            continue;
        }
        std::vector<std::vector<double>> signals;
        for (std::size_t signal = 0; signal < client_->facts().signals.size(); ++signal) {
            signals.push_back(client_->output(name, signal));
        }
        stages.emplace_back(name, toJson(signals));
    }
    return jsonObject(stages);
}

std::vector<std::pair<std::string, std::string>> ScriptRunner::watched() {
    std::vector<std::pair<std::string, std::string>> entries;
    client_->withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        for (const auto& key : watch_) {
            if (auto entry = boardEntryAsJson(info.getClientSettings(), key)) {
                entries.emplace_back(key, std::move(*entry));
            }
        }
    });
    return entries;
}

std::string ScriptRunner::run(std::size_t step) {
    Result result;
    std::optional<std::string> error;
    try {
        steps_[step].take(result);
    } catch (const std::exception& thrown) {
        error = jsonObject(
            {{"type", jsonText(boost::core::demangle(typeid(thrown).name()))}, {"text", jsonText(thrown.what())}});
    }
    std::vector<std::pair<std::string, std::string>> members;
    if (const auto entries = watched(); !entries.empty()) {
        members.emplace_back("board", jsonObject(entries));
    }
    if (result.event) {
        members.emplace_back("event", jsonText(*result.event));
    }
    if (result.message) {
        members.emplace_back("message", *result.message);
    }
    if (result.query) {
        members.emplace_back("query", *result.query);
    }
    if (steps_[step].showOutputs) {
        members.emplace_back("out", outputs());
    }
    if (error) {
        members.emplace_back("error", *error);
    }
    return jsonObject(members);
}

}  // namespace program
