// Sections of the report on measurements of samples.
#include <array>

#include "BoardRecord.h"
#include "MeasurementReports.h"
#include "bilevelMeasurementsStruct.h"
#include "signalStatsStruct.h"

namespace program {
namespace {

/// How a figure of the pulse measurements is shown, in the order of the record, and the option that asks for it.
struct PulseFigure {
    const char* label;
    const char* unit;
    const char* option;  ///< null: always measured
};

constexpr std::array<PulseFigure, 25> pulseFigures{{
    {"high state", "", nullptr},
    {"low state", "", nullptr},
    {"amplitude", "", nullptr},
    {"rising edges", "", "showTransitions"},
    {"rise time", "s", "showTransitions"},
    {"rising slew rate", "1/s", "showTransitions"},
    {"falling edges", "", "showTransitions"},
    {"fall time", "s", "showTransitions"},
    {"falling slew rate", "1/s", "showTransitions"},
    {"rising preshoot", "%", "showAberrations"},
    {"rising overshoot", "%", "showAberrations"},
    {"rising undershoot", "%", "showAberrations"},
    {"rising settling time", "s", "showAberrations"},
    {"falling preshoot", "%", "showAberrations"},
    {"falling overshoot", "%", "showAberrations"},
    {"falling undershoot", "%", "showAberrations"},
    {"falling settling time", "s", "showAberrations"},
    {"period", "s", "showCycles"},
    {"frequency", "Hz", "showCycles"},
    {"positive pulses", "", "showCycles"},
    {"positive width", "s", "showCycles"},
    {"positive duty cycle", "%", "showCycles"},
    {"negative pulses", "", "showCycles"},
    {"negative width", "s", "showCycles"},
    {"negative duty cycle", "%", "showCycles"},
}};

}  // namespace

ReportValue measuredChannel(const DeckSettings& settings, std::string_view stage) {
    return {"measured", "measured",
            "signal " + settings.value(stage, "measurementSignal") + ", channel " +
                settings.value(stage, "measurementChannel")};
}

ReportSection reportStatistics(const WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage) {
    const bool overSpan = stage != "signal_statistics_filter";
    ReportSection section{"stats", overSpan ? "statistics of the display span" : "statistics of the last frame"};
    const auto* stats = findRecord<dspwavedecks::signalStatsStruct>(board, "signalStats");
    if (stats == nullptr) {
        return section;
    }
    section.add(measuredChannel(settings, stage));
    const auto add = [&](const char* shown, const char* key, const char* label, double value) {
        if (settings.value(stage, shown) == "true") {
            section.add({key, label, value});
        }
    };
    const auto addExtreme = [&](const char* shown, const char* key, const char* label, double value, double position) {
        add(shown, key, label, value);
        if (settings.value(stage, shown) == "true") {
            section.add({std::string(key) + "Position", std::string(label) + " at", position, overSpan ? "s" : "",
                         overSpan ? "" : "(sample of the frame)"});
        }
    };
    addExtreme("showMax", "maximum", "maximum", stats->yMax, stats->xMax);
    addExtreme("showMin", "minimum", "minimum", stats->yMin, stats->xMin);
    add("showPeakToPeak", "peakToPeak", "peak to peak", stats->peakToPeak);
    add("showMean", "mean", "mean", stats->mean);
    add("showVariance", "variance", "variance", stats->variance);
    add("showStandardDeviation", "standardDeviation", "standard deviation", stats->standardDeviation);
    add("showMedian", "median", "median", stats->median);
    add("showRMS", "rms", "rms", stats->rms);
    add("showMeanSquare", "meanSquare", "mean square", stats->meanSquare);
    return section;
}

ReportSection reportPulses(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage) {
    ReportSection section{"bilevel", "pulses of the display span"};
    const auto* record = findRecord<dspwavedecks::bilevelMeasurementsStruct>(board, "bilevelMeasurements");
    if (record == nullptr) {
        return section;
    }
    section.add(measuredChannel(settings, stage));
    for (std::size_t i = 0; i < pulseFigures.size(); ++i) {
        const auto& [label, unit, option] = pulseFigures[i];
        if (option == nullptr || settings.value(stage, option) == "true") {
            const auto& field = dspwavedecks::bilevelMeasurementsFields[i];
            section.add({field.name, label, record->*field.value, unit});
        }
    }
    return section;
}

ReportSection reportTrigger(const WaveDeckClientSettings&, const DeckSettings& settings, std::string_view stage) {
    ReportSection section{"trigger", "trigger"};
    section.add(
        {"watched", "watched",
         "signal " + settings.value(stage, "triggerSignal") + ", channel " + settings.value(stage, "triggerChannel")});
    for (const char* option : {"mode", "type", "polarity"}) {
        section.add({option, option, settings.value(stage, option)});
    }
    return section;
}

}  // namespace program
