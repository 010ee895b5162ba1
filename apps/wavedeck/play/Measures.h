#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DeckSettings.h"
#include "Report.h"
#include "wavedeck/WaveDeckClientSettings.h"

namespace program {

/// A measurement of `--measure` at one stage.
struct Measure {
    std::string_view name;     ///< as typed
    std::string_view stage;    ///< that makes it
    std::string_view enabled;  ///< the stage's option that switches it on
    /// The figures of the last update, read from the client's board. Empty of values when there are none yet.
    ReportSection (*report)(const wavedeck::WaveDeckClientSettings& board, const DeckSettings& settings,
                            std::string_view stage);
    /// Options of the stage that a person who asks for the measurement wants too.
    std::span<const std::pair<std::string_view, std::string_view>> presets = {};
};

/// Names of all measurements, each once.
std::vector<std::string_view> measureNames();

/// Switches on the measurements of a list "a,b,c" in every deck that has them; "none" switches nothing on.
/// Throws UsageError for an unknown name and for one that no chosen deck measures.
void switchMeasuresOn(const std::string& names, std::vector<DeckSettings>& decks);

/// The measurements that are on when none are named: statistics of samples, peaks of spectra and responses.
void switchUsualMeasuresOn(std::vector<DeckSettings>& decks);

/// The measurements of a deck that are on.
std::vector<const Measure*> measuresOn(const DeckSettings& settings);

}  // namespace program
