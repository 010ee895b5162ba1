#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Deck.h"
#include "DeckClient.h"
#include "DeckSettings.h"
#include "Report.h"
#include "StageLibrary.h"

namespace program {

/// What all decks of a session have in common.
struct SessionFacts {
    std::vector<wavedeck::driver::SignalFacts> signals;
    double updatesPerSecond;
    std::optional<double> displaySpan;  ///< s
};

/// One deck at work: its client, the settings of its stages, and what it has to report.
class DeckSession {
public:
    DeckSession(const Deck& deck, DeckSettings settings, const SessionFacts& facts,
                const wavedeck::driver::StageLibrary& library);

    std::string_view name() const { return deck_.name; }
    wavedeck::driver::DeckClient& client() { return client_; }

    /// Counts an update that went out.
    void noteUpdate() { ++updates_; }

    /// The deck's section of the report.
    ReportSection report();

private:
    const Deck& deck_;
    DeckSettings settings_;
    wavedeck::driver::DeckClient client_;
    std::uint64_t updates_ = 0;
};

}  // namespace program
