// Sections of the report on measurements of samples.
#include "BoardRecord.h"
#include "MeasurementReports.h"
#include "signalStatsStruct.h"

namespace program {

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

}  // namespace program
