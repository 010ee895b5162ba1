#include "measuredPart.h"

#include <algorithm>

#include "EngineeringNumber.h"
#include "TextLists.h"

namespace program {
namespace {

constexpr std::string_view partsStage = "magnitude_phase_filter";
constexpr std::string_view responseStage = "magnitude_phase_response_filter";
constexpr std::string_view marksOption = "magPhaseData";

}  // namespace

std::string measuredPart(const SessionFacts& facts, const DeckSettings& settings, std::string_view stage) {
    const std::string prefix = settings.has(stage, "triggerSignal") ? "trigger" : "measurement";
    const double signal = *parseNumber(settings.value(stage, prefix + "Signal"));
    const double channel = *parseNumber(settings.value(stage, prefix + "Channel"));
    const auto signals =
        std::count_if(facts.signals.begin(), facts.signals.end(), [](const auto& each) { return !each.isInputPort; });
    if (signal < 0.0 || signal >= static_cast<double>(signals)) {
        return " (not there)";
    }
    const auto index = static_cast<std::size_t>(signal);
    const auto& measured = facts.signals[index];
    const int channels = measured.numChannels / (measured.isComplex ? 2 : 1);
    const bool isResponse = settings.has(responseStage, marksOption);
    const bool hasParts = isResponse || settings.has(partsStage, marksOption);
    const auto given = hasParts ? settings.value(isResponse ? responseStage : partsStage, marksOption) : "";
    const auto marks = split(given, ',');
    // Where none are given, each response has its phase, and no samples have one.
    const bool isMarked = given.empty() ? isResponse : index < marks.size() && marks[index] == "true";
    const bool isParted = isMarked || (hasParts && measured.isComplex);
    if (channel < 0.0 || channel >= channels * (isParted ? 2 : 1)) {
        return " (not there)";
    }
    if (!isParted) {
        return "";
    }
    if (channel < channels) {
        return isMarked ? " (magnitude)" : " (real part)";
    }
    return (isMarked ? " (phase of channel " : " (imaginary part of channel ") +
           std::to_string(static_cast<int>(channel) - channels) + ')';
}

}  // namespace program
