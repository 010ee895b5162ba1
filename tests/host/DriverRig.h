#pragma once

#include "DriverTest.h"
#include "RecordingStage.h"

/// A client with recording stages and a recording strategy.
struct DriverRig {
    explicit DriverRig(const wavedeck::driver::ClientFacts& facts) : client(facts) {
        client.setStrategy("recording", strategy);
    }
    DriverRig(wavedeck::driver::ChainKind kind, std::vector<wavedeck::driver::SignalFacts> signals)
        : DriverRig(testsupport::factsOf(kind, std::move(signals))) {}

    /// The client's record, as its stages find it.
    static wavedeck::WaveDeckClientInfo& info() { return *wavedeck::WaveDeckClientRegistry::sInstance("driver test"); }

    std::shared_ptr<RecordingStage> add(const std::string& name, RecordingStage::Replace replace = {}) {
        auto stage = std::make_shared<RecordingStage>(name, log, std::move(replace));
        client.addStage(name, stage);
        return stage;
    }

    /// What signal 0 shows after an update, if there is anything new.
    const Values& shown() {
        client.update();
        return strategy->data[0];
    }
    /// The same, new or not.
    const Values& shownNow() {
        client.updateNow();
        return strategy->data[0];
    }

    std::shared_ptr<CallLog> log = std::make_shared<CallLog>();
    std::shared_ptr<RecordingStrategy> strategy = std::make_shared<RecordingStrategy>();
    wavedeck::driver::DeckClient client;
};
