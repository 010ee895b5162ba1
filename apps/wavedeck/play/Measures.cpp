#include "Measures.h"

#include <algorithm>
#include <array>

#include "MeasurementReports.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

constexpr std::array<Measure, 2> measures{{
    {"stats", "time_signal_statistics_filter", "signalStatisticsEnabled", reportStatistics},
    {"stats", "signal_statistics_filter", "signalStatisticsEnabled", reportStatistics},
}};

}  // namespace

void switchMeasuresOn(const std::string& names, std::vector<DeckSettings>& decks) {
    if (names == "none") {
        return;
    }
    for (const auto& name : split(names, ',')) {
        bool known = false;
        bool switched = false;
        for (const auto& measure : measures) {
            if (measure.name != name) {
                continue;
            }
            known = true;
            for (auto& deck : decks) {
                if (deck.has(measure.stage, measure.enabled)) {
                    deck.preset(measure.stage, measure.enabled, "true");
                    switched = true;
                }
            }
        }
        if (!known) {
            throw UsageError("--measure: `" + name + "` is none of stats");
        }
        if (!switched) {
            throw UsageError("--measure: none of the chosen decks measures " + name);
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
