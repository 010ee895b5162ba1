#include "DeckSession.h"

#include "BoardRecord.h"
#include "MeasurementReports.h"
#include "Measures.h"
#include "spectralMaskStruct.h"

namespace program {
namespace {

wavedeck::driver::ClientFacts clientFacts(const Deck& deck, const SessionFacts& facts) {
    wavedeck::driver::ClientFacts client;
    client.name = deck.name;
    client.kind = deck.kind;
    client.signals = facts.signals;
    client.displaySpan = facts.displaySpan;
    client.updatesPerSecond = facts.updatesPerSecond;
    return client;
}

std::uint64_t readCounter(const wavedeck::WaveDeckClientSettings& board, const char* key) {
    const auto* count = findRecord<unsigned long>(board, key);
    return count == nullptr ? 0 : *count;
}

}  // namespace

DeckSession::DeckSession(const Deck& deck, DeckSettings settings, const SessionFacts& facts,
                         const wavedeck::driver::StageLibrary& library)
    : deck_(deck), settings_(std::move(settings)), client_(clientFacts(deck, facts)) {
    for (const auto stage : settings_.stages()) {
        const std::string stageName(stage);
        client_.addStage(stageName, library.makeFilter(stageName), settings_.properties(stage));
    }
    const std::string strategy(deck.strategy);
    client_.setStrategy(strategy, library.makeStrategy(strategy));
    client_.setup();
}

ReportSection DeckSession::report() {
    ReportSection section{"", "deck " + std::string(deck_.name)};
    section.add({"deck", "", std::string(deck_.name)});
    client_.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto& board = info.getClientSettings();
        section.add({"frames", "frames", readCounter(board, "framesProcessed")});
        section.add({"samples", "samples of all channels", readCounter(board, "samplesProcessed")});
        section.add({"updates", "updates", updates_});
        if (deck_.kind == wavedeck::driver::ChainKind::Spectrum) {
            addSpectrumFigures(board, settings_, section);
        }
        for (const auto* measure : measuresOn(settings_)) {
            section.sections.push_back(measure->report(board, settings_, measure->stage));
        }
    });
    if (deck_.kind == wavedeck::driver::ChainKind::Time) {
        section.add({"span", "display span", client_.displaySpan(), "s"});
    }
    return section;
}

bool DeckSession::limitFailed() {
    bool failed = false;
    client_.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto* mask = findRecord<dspwavedecks::spectralMaskStruct>(info.getClientSettings(), "spectralMask");
        failed = mask != nullptr && mask->numPassedTests < mask->numTotalTests;
    });
    return failed;
}

}  // namespace program
