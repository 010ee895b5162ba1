#include "ScriptClient.h"

#include <algorithm>
#include <array>
#include <boost/any.hpp>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

#include "UsageError.h"
#include "wavedeck/DataStorageFilterUtils.h"
#include "wavedeck/WaveDeckStatics.h"

namespace program {
namespace {

using wavedeck::AxesTime;
using wavedeck::SimStatus;
using wavedeck::WaveDeckClientInfo;
using wavedeck::driver::DeckClient;

constexpr int mostChannels = 4096;
constexpr int largestFrame = 1 << 26;

std::vector<double> readNumbers(const ScriptValue& value) {
    std::vector<double> numbers;
    for (const auto& element : value.list("a list of numbers")) {
        numbers.push_back(element.number());
    }
    return numbers;
}

wavedeck::driver::SignalFacts readSignal(const ScriptValue& value, std::size_t index) {
    static constexpr std::array<std::string_view, 7> members{"id",     "channels",  "complex",  "sampleTime",
                                                             "offset", "frameSize", "inputPort"};
    value.allowOnly(members);
    wavedeck::driver::SignalFacts signal;
    signal.id = "signal" + std::to_string(index);
    if (const auto* id = value.find("id")) {
        signal.id = id->text();
    }
    if (const auto* channels = value.find("channels")) {
        signal.numChannels = static_cast<int>(channels->wholeNumber(0, mostChannels, "a number of channels"));
    }
    if (const auto* isComplex = value.find("complex")) {
        signal.isComplex = isComplex->logical();
    }
    if (const auto* sampleTime = value.find("sampleTime")) {
        signal.sampleTime = sampleTime->number("a sample time in seconds");
    }
    if (const auto* offset = value.find("offset")) {
        signal.offset = offset->number("an offset in seconds");
    }
    if (const auto* frameSize = value.find("frameSize")) {
        signal.frameSize = static_cast<int>(frameSize->wholeNumber(0, largestFrame, "a number of samples"));
    }
    if (const auto* inputPort = value.find("inputPort")) {
        signal.isInputPort = inputPort->logical();
    }
    return signal;
}

std::map<unsigned long, AxesTime> readAxes(const ScriptValue& value) {
    static constexpr std::array<std::string_view, 3> members{"startTime", "timeSpan", "axesFlag"};
    std::map<unsigned long, AxesTime> axes;
    for (const auto& [name, entry] : value.members("an object of axes")) {
        if (name.empty() || name.size() > 9 || name.find_first_not_of("0123456789") != std::string::npos) {
            throw UsageError("line " + std::to_string(entry.line()) + ": expected the number of an axes, found \"" +
                             name + '"');
        }
        entry.allowOnly(members);
        axes[std::stoul(name)] = {entry.require("startTime").number(), entry.require("timeSpan").number(),
                                  entry.find("axesFlag") != nullptr && entry.require("axesFlag").logical() ? 1UL : 0UL};
    }
    return axes;
}

/// One value of the board: the kinds are those of the entries that stages write.
boost::any readBoardEntry(const ScriptValue& value) {
    const auto& members = value.members("an object {KIND: VALUE}");
    if (members.size() != 1) {
        value.refuse("an object with one member {KIND: VALUE}");
    }
    const auto& [kind, held] = members.front();
    if (kind == "double") {
        if (held.isList()) {
            return readNumbers(held);
        }
        return held.number();
    }
    if (kind == "int") {
        return static_cast<int>(held.wholeNumber(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    }
    if (kind == "unsigned") {
        constexpr long long exact = 1LL << 53;
        return static_cast<unsigned long>(held.wholeNumber(0, exact));
    }
    if (kind == "logical") {
        if (!held.isList()) {
            return held.logical();
        }
        std::vector<bool> marks;
        for (const auto& mark : held.list()) {
            marks.push_back(mark.logical());
        }
        return marks;
    }
    if (kind == "text") {
        return held.text();
    }
    held.refuse("one of the kinds double, int, unsigned, logical, text; this is \"" + kind + "\",");
}

wavedeck::DataStorageFilterUtils readStorage(const ScriptValue& value) {
    static constexpr std::array<std::string_view, 3> members{"startTimeInBuffer", "forceLimitBuffer",
                                                             "startTimeInBufferChanged"};
    value.allowOnly(members);
    return {readNumbers(value.require("startTimeInBuffer")), value.require("forceLimitBuffer").logical(),
            value.require("startTimeInBufferChanged").logical()};
}

ClientChange readBoard(const ScriptValue& value) {
    std::vector<std::pair<std::string, boost::any>> entries;
    for (const auto& [key, entry] : value.members("an object of board entries")) {
        entries.emplace_back(key, readBoardEntry(entry));
    }
    return [entries](DeckClient& client) {
        client.withInfo([&](WaveDeckClientInfo& info) {
            for (const auto& [key, entry] : entries) {
                info.getClientSettings().addCustomSetting(key, entry);
            }
        });
    };
}

/// A change that sets one fact.
template <typename Value, typename Set>
ClientChange factChange(Value value, Set set) {
    return [value, set](DeckClient& client) { client.withInfo([&](WaveDeckClientInfo& info) { (info.*set)(value); }); };
}

SimStatus readStatus(const ScriptValue& value) {
    const auto& status = value.text("ended, running or paused");
    if (status == "ended") {
        return SimStatus::Ended;
    }
    if (status == "running") {
        return SimStatus::Running;
    }
    if (status == "paused") {
        return SimStatus::Paused;
    }
    value.refuse("ended, running or paused");
}

bool readSource(const ScriptValue& value) {
    const auto& source = value.text("live or repository");
    if (source != "live" && source != "repository") {
        value.refuse("live or repository");
    }
    return source == "repository";
}

using ReadChange = ClientChange (*)(const ScriptValue&);

constexpr std::array<std::pair<std::string_view, ReadChange>, 16> changes{{
    {"timeBased",
     [](const ScriptValue& value) { return factChange(value.logical(), &WaveDeckClientInfo::setTimeBased); }},
    {"simulationTime",
     [](const ScriptValue& value) { return factChange(value.number(), &WaveDeckClientInfo::setSimulationTime); }},
    {"startTime",
     [](const ScriptValue& value) { return factChange(value.number(), &WaveDeckClientInfo::setSimStartTime); }},
    {"stopTime",
     [](const ScriptValue& value) { return factChange(value.number(), &WaveDeckClientInfo::setSimStopTime); }},
    {"status",
     [](const ScriptValue& value) { return factChange(readStatus(value), &WaveDeckClientInfo::setSimStatus); }},
    {"fastRestart",
     [](const ScriptValue& value) { return factChange(value.logical(), &WaveDeckClientInfo::setFastRestart); }},
    {"timeSpanOneFramePeriod",
     [](const ScriptValue& value) {
         return factChange(value.logical(), &WaveDeckClientInfo::setTimeSpanOneFramePeriod);
     }},
    {"streamPlugInBF",
     [](const ScriptValue& value) { return factChange(value.logical(), &WaveDeckClientInfo::setUsingStreamPlugInBF); }},
    {"sampleTimes",
     [](const ScriptValue& value) { return factChange(readNumbers(value), &WaveDeckClientInfo::setSampleTimes); }},
    {"offsets",
     [](const ScriptValue& value) { return factChange(readNumbers(value), &WaveDeckClientInfo::setOffsets); }},
    {"axes",
     [](const ScriptValue& value) -> ClientChange {
         return [axes = readAxes(value)](DeckClient& client) {
             client.withInfo([&](WaveDeckClientInfo& info) {
                 for (const auto& [id, entry] : axes) {
                     info.getClientSettings().axesTimeTable.set(id, entry);
                 }
             });
         };
     }},
    {"displaySpan",
     [](const ScriptValue& value) -> ClientChange {
         return [seconds = value.number()](DeckClient& client) { client.setDisplaySpan(seconds); };
     }},
    {"board", readBoard},
    {"storage",
     [](const ScriptValue& value) -> ClientChange {
         return [storage = readStorage(value)](DeckClient& client) { client.setStorage(storage); };
     }},
    {"source",
     [](const ScriptValue& value) -> ClientChange {
         return [replaying = readSource(value)](DeckClient& client) { client.setReplaying(replaying); };
     }},
    {"diagnostics",
     [](const ScriptValue& value) -> ClientChange {
         return [enable = value.logical()](DeckClient&) {
             wavedeck::WaveDeckStatics::setEnableWaveDecksDiagnostics(enable);
         };
     }},
}};

/// What only a script's "client" has: it is settled when the client is made.
constexpr std::array<std::string_view, 3> startMembers{"name", "signals", "updatesPerSecond"};

}  // namespace

wavedeck::driver::ClientFacts readClientFacts(const ScriptValue& client, wavedeck::driver::ChainKind kind) {
    wavedeck::driver::ClientFacts facts;
    facts.kind = kind;
    facts.name = client.require("name").text();
    const auto& signals = client.require("signals").list("a list of signals");
    for (std::size_t i = 0; i < signals.size(); ++i) {
        facts.signals.push_back(readSignal(signals[i], i));
    }
    if (const auto* timeBased = client.find("timeBased")) {
        facts.timeBased = timeBased->logical();
    }
    if (const auto* startTime = client.find("startTime")) {
        facts.startTime = startTime->number();
    }
    if (const auto* stopTime = client.find("stopTime")) {
        facts.stopTime = stopTime->number();
    }
    if (const auto* span = client.find("displaySpan")) {
        facts.displaySpan = span->number();
    }
    if (const auto* axes = client.find("axes")) {
        facts.axes = readAxes(*axes);
    }
    if (const auto* updates = client.find("updatesPerSecond")) {
        facts.updatesPerSecond = updates->number();
    }
    return facts;
}

std::vector<ClientChange> readClientChanges(const ScriptValue& client, bool atStart) {
    std::vector<std::string_view> allowed;
    for (const auto& change : changes) {
        allowed.push_back(change.first);
    }
    if (atStart) {
        allowed.insert(allowed.end(), startMembers.begin(), startMembers.end());
    }
    client.allowOnly(allowed);
    std::vector<ClientChange> read;
    for (const auto& [name, value] : client.members()) {
        const auto* change = std::find_if(changes.begin(), changes.end(),
                                          [&wanted = name](const auto& entry) { return entry.first == wanted; });
        // The client is made with its display span.
        if (change != changes.end() && !(atStart && name == "displaySpan")) {
            read.push_back(change->second(value));
        }
    }
    return read;
}

}  // namespace program
