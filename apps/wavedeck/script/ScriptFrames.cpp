#include "ScriptFrames.h"

#include <array>
#include <string_view>

#include "JsonText.h"
#include "UsageError.h"

namespace program {
namespace {

std::vector<double> readFlat(const ScriptValue& value) {
    std::vector<double> numbers;
    for (const auto& element : value.list("a list of numbers")) {
        numbers.push_back(element.number());
    }
    return numbers;
}

std::vector<double> readChannels(const ScriptValue& value) {
    const auto& channels = value.list("a list of channels");
    std::vector<double> numbers;
    for (const auto& channel : channels) {
        if (channel.list("a list of numbers for each channel").size() != channels.front().list().size()) {
            channel.refuse("channels of one length");
        }
        const auto samples = readFlat(channel);
        numbers.insert(numbers.end(), samples.begin(), samples.end());
    }
    return numbers;
}

TestSignalReader& testSignalOf(const ScriptValue& value, const wavedeck::driver::ClientFacts& facts, std::size_t signal,
                               ScriptFrame::TestSignals& testSignals) {
    const auto& text = value.text("a test signal NAME?key=value&...");
    auto& reader = testSignals[std::to_string(signal) + ' ' + text];
    if (!reader) {
        // A script's signals run on without end, and have what the client's signal has unless the text says otherwise.
        const auto& signalFacts = facts.signals[signal];
        std::string full = text + (text.find('?') == std::string::npos ? '?' : '&') + "duration=inf";
        if (text.find("rate=") == std::string::npos) {
            full += "&rate=" + jsonNumber(1.0 / signalFacts.sampleTime);
        }
        if (text.find("channels=") == std::string::npos && text.find("complex=") == std::string::npos &&
            signalFacts.numChannels > 0) {
            const int channels = signalFacts.isComplex ? signalFacts.numChannels / 2 : signalFacts.numChannels;
            full += "&channels=" + std::to_string(channels) + (signalFacts.isComplex ? "&complex=true" : "");
        }
        try {
            reader = std::make_unique<TestSignalReader>(full);
        } catch (const UsageError& error) {
            throw UsageError("line " + std::to_string(value.line()) + ": " + error.what());
        }
    }
    return *reader;
}

}  // namespace

ScriptFrame::ScriptFrame(const ScriptValue& entries, const wavedeck::driver::ClientFacts& facts,
                         TestSignals& testSignals) {
    static constexpr std::array<std::string_view, 5> members{"raw", "buffer", "head", "gen", "samples"};
    const auto& list = entries.list("a list with one entry for each signal");
    if (list.size() != facts.signals.size()) {
        entries.refuse("one entry for each of the " + std::to_string(facts.signals.size()) + " signals");
    }
    for (std::size_t signal = 0; signal < list.size(); ++signal) {
        const auto& value = list[signal];
        value.allowOnly(members);
        Entry entry;
        Form form = Form::raw;
        if (const auto* raw = value.find("raw")) {
            entry.numbers = readChannels(*raw);
        } else if (const auto* gen = value.find("gen")) {
            constexpr long long mostSamples = 1LL << 26;
            entry.testSignal = &testSignalOf(*gen, facts, signal, testSignals);
            entry.samples = static_cast<std::size_t>(value.require("samples").wholeNumber(0, mostSamples));
        } else if (const auto* head = value.find("head")) {
            entry.numbers = readFlat(*head);
            form = Form::head;
        } else {
            entry.numbers = readFlat(value.require("buffer"));
            form = Form::buffer;
        }
        if (signal > 0 && form != form_) {
            value.refuse("an entry of the same form as the first signal's");
        }
        form_ = form;
        entries_.push_back(std::move(entry));
    }
}

void ScriptFrame::handTo(wavedeck::driver::DeckClient& client) const {
    std::vector<std::vector<double>> signals(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].testSignal != nullptr) {
            entries_[i].testSignal->read(entries_[i].samples, signals[i]);
        } else {
            signals[i] = entries_[i].numbers;
        }
    }
    switch (form_) {
        case Form::head:
            client.simulationFrame(signals);
            return;
        case Form::raw:
            client.isReplaying() ? void(client.replay(signals)) : client.frame(signals);
            return;
        case Form::buffer:
            client.isReplaying() ? void(client.replayAsIs(signals)) : client.frameAsIs(signals);
            return;
    }
}

}  // namespace program
