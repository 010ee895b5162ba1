#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Deck.h"
#include "DeckClient.h"
#include "DeckPresets.h"
#include "DeckSettings.h"
#include "Report.h"
#include "StageLibrary.h"

namespace program {

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

    /// Whether a spectrum has failed its masks.
    bool limitFailed();

private:
    const Deck& deck_;
    DeckSettings settings_;
    wavedeck::driver::DeckClient client_;
    std::uint64_t updates_ = 0;
};

}  // namespace program
