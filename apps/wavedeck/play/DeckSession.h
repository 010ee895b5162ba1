#pragma once

#include <Poco/JSON/Object.h>

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
#include "TriggerTally.h"

namespace program {

/// One deck at work: its client, the settings of its stages, and what it has to report.
class DeckSession {
public:
    DeckSession(const Deck& deck, DeckSettings settings, const SessionFacts& facts,
                const wavedeck::driver::StageLibrary& library);

    std::string_view name() const { return deck_.name; }
    wavedeck::driver::DeckClient& client() { return client_; }

    /// Takes account of an update that went out.
    void noteUpdate(const Poco::JSON::Object& message);

    /// The deck's section of the report.
    ReportSection report();

    /// Whether a spectrum has failed its masks.
    bool limitFailed();

private:
    ReportSection reportMeasures();
    void addResponse(ReportSection& section, ReportSection& measures);

    const Deck& deck_;
    DeckSettings settings_;
    wavedeck::driver::DeckClient client_;
    double rate_;  ///< Hz, of the first signal
    std::uint64_t updates_ = 0;
    TriggerTally trigger_;
};

}  // namespace program
