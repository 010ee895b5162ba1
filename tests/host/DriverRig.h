#pragma once

#include "DriverTest.h"
#include "RecordingStage.h"

/// A client with recording stages and a recording strategy.
struct DriverRig {
    explicit DriverRig(const wavedeck::driver::ClientFacts& facts) : client(facts) {
        client.setStrategy("recording", strategy);
    }

    std::shared_ptr<RecordingStage> add(const std::string& name, RecordingStage::Replace replace = {}) {
        auto stage = std::make_shared<RecordingStage>(name, log, std::move(replace));
        client.addStage(name, stage);
        return stage;
    }

    std::shared_ptr<CallLog> log = std::make_shared<CallLog>();
    std::shared_ptr<RecordingStrategy> strategy = std::make_shared<RecordingStrategy>();
    wavedeck::driver::DeckClient client;
};

/// The value of an option, or nothing where the list has none of that type.
template <typename T>
std::vector<T> optionValues(const wavedeck::PropertyList& list, const std::string& name) {
    const auto* event = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(list.find(name));
    if (!event) {
        return {};
    }
    std::vector<T> values;
    for (const T& value : foundation::numbenchdata::TypedArray<T>(event->getValue())) {
        values.push_back(value);
    }
    return values;
}

inline std::string optionText(const wavedeck::PropertyList& list, const std::string& name) {
    const std::vector<char16_t> units = optionValues<char16_t>(list, name);
    return {units.begin(), units.end()};
}
