#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DeckClient.h"
#include "ScriptValue.h"
#include "TestSignalReader.h"

namespace program {

/// What a frame step hands to the client: one entry a signal, all of one form.
///   {"raw": [[...], ...]}             a list a raw channel, all of one length
///   {"buffer": [...]}                 handed to every stage as it stands
///   {"head": [...]}                   a simulation's frame in head form
///   {"gen": "NAME?...", "samples": N} the next samples of a test signal, which goes on from step to step
class ScriptFrame {
public:
    /// Test signals that go on over the steps of a script, by signal and text.
    using TestSignals = std::map<std::string, std::unique_ptr<TestSignalReader>>;

    /// Reads the entries. Throws UsageError with the line.
    ScriptFrame(const ScriptValue& entries, const wavedeck::driver::ClientFacts& facts, TestSignals& testSignals);

    /// Hands one frame over; to a client that replays, as replayed data.
    void handTo(wavedeck::driver::DeckClient& client) const;

private:
    enum class Form { raw, buffer, head };

    /// A signal's entry: numbers, or a test signal that makes them.
    struct Entry {
        std::vector<double> numbers;
        TestSignalReader* testSignal = nullptr;
        std::size_t samples = 0;
    };

    Form form_ = Form::raw;
    std::vector<Entry> entries_;
};

}  // namespace program
