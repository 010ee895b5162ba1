#include "Measures.h"

#include <algorithm>
#include <array>

#include "MeasurementReports.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

using Preset = std::pair<std::string_view, std::string_view>;

constexpr Preset pulsePresets[] = {{"showTransitions", "true"}, {"showAberrations", "true"}, {"showCycles", "true"}};
// The stage takes the mode for switched off until it is told one.
constexpr Preset triggerPresets[] = {{"mode", "auto"}};

constexpr std::array measures{
    Measure{"stats", "time_signal_statistics_filter", "signalStatisticsEnabled", reportStatistics},
    Measure{"stats", "bf_time_signal_statistics_filter", "signalStatisticsEnabled", reportStatistics},
    Measure{"stats", "signal_statistics_filter", "signalStatisticsEnabled", reportStatistics},
    Measure{"peaks", "time_peak_finder_filter", "peakFinderEnabled", reportPeaks},
    Measure{"peaks", "bf_time_peak_finder_filter", "peakFinderEnabled", reportPeaks},
    Measure{"peaks", "peak_finder_filter", "peakFinderEnabled", reportPeaks},
    Measure{"peaks", "frequency_peak_finder_filter", "peakFinderEnabled", reportPeaks},
    Measure{"bilevel", "bilevel_measurements_filter", "bilevelMeasurementsEnabled", reportPulses, pulsePresets},
    Measure{"bilevel", "bf_bilevel_measurements_filter", "bilevelMeasurementsEnabled", reportPulses, pulsePresets},
    Measure{"trigger", "trigger_filter", "triggerEnabled", reportTrigger, triggerPresets},
    Measure{"trigger", "bf_trigger_filter", "triggerEnabled", reportTrigger, triggerPresets},
    Measure{"channel", "channel_measurements_filter", "channelMeasurementsEnabled", reportChannel},
    Measure{"distortion", "distortion_measurements_filter", "distortionMeasurementsEnabled", reportDistortion},
    Measure{"phasenoise", "phase_noise_filter", "phaseNoiseEnabled", reportPhaseNoise},
    Measure{"mask", "spectral_mask_tester_filter", "spectralMaskEnabled", reportMask},
};

/// Switches a measurement on in a deck; tells whether the deck has it.
bool switchOn(const Measure& measure, DeckSettings& deck) {
    if (!deck.has(measure.stage, measure.enabled)) {
        return false;
    }
    deck.preset(measure.stage, measure.enabled, "true");
    for (const auto& [option, text] : measure.presets) {
        deck.preset(measure.stage, option, std::string(text));
    }
    return true;
}

}  // namespace

std::vector<std::string_view> measureNames() {
    std::vector<std::string_view> names;
    for (const auto& measure : measures) {
        if (std::find(names.begin(), names.end(), measure.name) == names.end()) {
            names.push_back(measure.name);
        }
    }
    return names;
}

void switchMeasuresOn(const std::string& names, std::vector<DeckSettings>& decks) {
    if (names == "none") {
        return;
    }
    for (const auto& name : split(names, ',')) {
        bool found = false;
        bool switched = false;
        for (const auto& measure : measures) {
            if (measure.name == name) {
                found = true;
                for (auto& deck : decks) {
                    switched = switchOn(measure, deck) || switched;
                }
            }
        }
        if (!found) {
            throw UsageError("--measure: `" + name + "` is none of " + join(measureNames(), " "));
        }
        if (!switched) {
            throw UsageError("--measure: none of the chosen decks measures " + name);
        }
    }
}

void switchUsualMeasuresOn(std::vector<DeckSettings>& decks) {
    for (auto& deck : decks) {
        const bool samples = deck.has("magnitude_phase_filter", "magPhaseData");
        for (const auto& measure : measures) {
            if (measure.name == (samples ? "stats" : "peaks")) {
                switchOn(measure, deck);
            }
        }
    }
}

std::vector<const Measure*> measuresOn(const DeckSettings& settings) {
    std::vector<const Measure*> on;
    for (const auto& measure : measures) {
        if (settings.has(measure.stage, measure.enabled) && settings.value(measure.stage, measure.enabled) == "true") {
            on.push_back(&measure);
        }
    }
    return on;
}

}  // namespace program
