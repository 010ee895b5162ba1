// What a browser asks a deck to change: the first byte chooses the deck, each line is a tune {"stage": ..., "options":
// ...}, and behind each the deck is fed and asked for a message and a report.

#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "DeckSession.h"
#include "InputBytes.h"
#include "LimitedAllocation.h"
#include "MessageText.h"
#include "TextLists.h"

namespace {

struct Choice {
    const char* deck;
    bool blockflow;
};

constexpr std::array choices{Choice{"time", false}, Choice{"spectrum", false}, Choice{"frame", false},
                             Choice{"time", true}, Choice{"spectrum", true}};
constexpr int frameSize = 64;

program::SessionFacts sessionFacts() {
    program::SessionFacts facts;
    facts.signals.push_back({"signal", 2, false, 1e-3, 0.0, frameSize, false});
    facts.centerFrequencies.push_back(0.0);
    return facts;
}

std::vector<std::vector<double>> nextFrame(int index) {
    std::vector<double> samples(2 * frameSize);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::sin(0.3 * static_cast<double>(i) * (index + 1));
    }
    return {samples};
}

void tuneAndFeed(program::DeckSession& session, const std::string& line, int index) {
    const auto request = nlohmann::json::parse(line, nullptr, false);
    if (request.is_object() && request.contains("stage") && request["stage"].is_string() &&
        request.contains("options") && request["options"].is_object()) {
        try {
            session.tune(request["stage"], request["options"]);
        } catch (const std::exception&) {
            return;
        }
    }
    session.feed(nextFrame(index));
    session.show();
    const auto update = session.client().updateNow();
    if (!update.message.isNull()) {
        session.noteUpdate(*update.message);
        wavedeck::driver::MessageText().write(*update.message);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    static const wavedeck::driver::StageLibrary library(STAGE_LIBRARY);
    fuzz::InputBytes input(data, size);
    const Choice& choice = input.oneOf(choices);
    const auto& deck = program::findDeck(choice.deck, choice.blockflow);
    program::DeckSettings settings({deck.stages.begin(), deck.stages.end()});
    const auto facts = sessionFacts();
    program::applyPresets(deck, facts, settings);
    program::DeckSession session(deck, settings, facts, library);
    int index = 0;
    for (const auto& line : program::split(input.rest(), '\n')) {
        try {
            tuneAndFeed(session, line, ++index);
        } catch (const std::exception&) {
            continue;  // a stage refuses its options
        }
        if (index == 16) {
            break;
        }
    }
    try {
        session.report();
    } catch (const std::exception&) {
        return 0;
    }
    return 0;
}
