#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ClientFacts.h"
#include "Deck.h"
#include "DeckSettings.h"

namespace program {

/// Samples of the measured channel that the measurements of the time deck look back over at most.
constexpr double numCachedSamples = 5000.0;

/// Samples that a time display keeps at most.
constexpr double numDisplayedSamples = 16777216.0;

/// What all decks of a session have in common.
struct SessionFacts {
    std::vector<wavedeck::driver::SignalFacts> signals;
    std::vector<double> centerFrequencies;  ///< Hz, one a signal
    double startTime = 0.0;                 ///< s, where in the inputs the stream begins
    double updatesPerSecond = 20.0;         ///< of stream time
    std::optional<double> displaySpan;      ///< s
    double fullScale = 1.0;                 ///< of the inputs' samples
};

/// Marks the inputs that are parameters of the deck's spectra and not data: the last ones, one for each port that is in
/// use. Throws UsageError where no data would be left.
void markInputPorts(const DeckSettings& settings, SessionFacts& facts);

/// Presets what a person expects of a deck and links its stages: what one stage is told follows from the signals and
/// from what another is set to. Called at setup, and again whenever a setting has changed; a person's choices stay.
/// Throws UsageError where the signals do not suit the deck.
void applyPresets(const Deck& deck, const SessionFacts& facts, DeckSettings& settings);

/// The stage that estimates a spectrum deck's spectra.
std::string_view estimatorStage(const DeckSettings& settings);

/// The word of the units in which a spectrum is shown: the estimator's "spectrumUnits", with "auto" and "none" resolved
/// to what they leave: the units of frequency input, else watts.
std::string shownSpectrumUnits(const DeckSettings& settings);

/// True when the option follows from another stage's, so that a setting without a stage goes to that other stage alone.
bool isLinked(std::string_view stage, std::string_view option);

}  // namespace program
