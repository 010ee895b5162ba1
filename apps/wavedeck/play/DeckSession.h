#pragma once

#include <Poco/JSON/Object.h>

#include <cstdint>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Deck.h"
#include "DeckClient.h"
#include "DeckPresets.h"
#include "DeckSettings.h"
#include "DeckSimulation.h"
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
    wavedeck::driver::ChainKind kind() const { return deck_.kind; }
    wavedeck::driver::DeckClient& client() { return client_; }

    /// Whether the deck shows spectra, of a stream or of a simulation.
    bool showsSpectra() const;

    /// The settings of the stages as they stand; from any thread.
    DeckSettings settings() const;

    /// Changes options of a stage while data flows, from any thread, and what follows from them at other stages.
    /// options  object: name to a number, a logical, a text or a list
    /// Throws UsageError for an unknown stage or option or a value that is not allowed, and what the stage itself
    /// throws for a value of a kind that it does not take; the settings then stay as they were.
    void tune(const std::string& stage, const nlohmann::json& options);

    /// Moves the frequencies shown to other centre frequencies, one a signal, Hz, unless a person has set them.
    void setCenterFrequencies(const std::vector<double>& frequencies);

    /// Measures what the client holds once more, with the settings as they stand.
    void replay();

    /// Hands the client a frame of all signals: [rows * n] each. A simulation takes whole frames only, and takes a step
    /// that then waits to be shown.
    void feed(const std::vector<std::vector<double>>& frame);

    /// Shows the client the oldest step of its simulation that waits; false if none does.
    bool show();

    /// Whether a step waits to be shown.
    bool hasWaiting() const { return simulation_ && simulation_->hasWaiting(); }

    /// Whether the pacer holds the simulation until the client was shown more of it.
    bool isHeld() const { return simulation_ && simulation_->isHeld(); }

    /// No frame follows.
    void endInput();

    /// Takes account of an update that went out.
    void noteUpdate(const Poco::JSON::Object& message);

    /// The deck's section of the report.
    ReportSection report();

    /// Whether a spectrum has failed its masks.
    bool limitFailed();

private:
    void apply(DeckSettings next);
    void send(const DeckSettings& settings, const DeckSettings& previous);
    ReportSection reportMeasures();
    void addResponse(ReportSection& section, ReportSection& measures);
    bool isWhole(const std::vector<std::vector<double>>& frame) const;
    /// Samples of all channels, complex ones counted once, in a step of the simulation.
    std::uint64_t samplesPerStep() const;

    const Deck& deck_;
    SessionFacts facts_;
    mutable std::mutex mutex_;  ///< guards the settings: browsers tune while the deck reports
    DeckSettings settings_;
    wavedeck::driver::DeckClient client_;
    std::optional<DeckSimulation> simulation_;  ///< of a Blockflow deck
    double rate_;                               ///< Hz, of the first signal
    std::uint64_t updates_ = 0;
    std::vector<std::span<const double>> spans_;  ///< scratch
    TriggerTally trigger_;
};

}  // namespace program
