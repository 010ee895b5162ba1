#include "impliedOptions.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "DeckPresets.h"
#include "EngineeringNumber.h"
#include "UsageError.h"

namespace program {
namespace {

/// An option whose value counts only while another one has a certain value.
struct Implied {
    std::string_view option;
    std::string_view needed;
    std::string_view value;
};

constexpr Implied impliedOptions[] = {
    {"rbw", "autoRBW", "false"},
    {"windowLength", "frequencyResolutionMethod", "window-length"},
    {"fftLength", "autoFFTLength", "false"},
    {"frequencyVector", "autoFrequencyVector", "false"},
    {"customWindow", "window", "custom"},
    {"maxSegmentLength", "enableMaxSegmentLengthThreshold", "true"},
    {"spectralAverages", "averagingMethod", "running"},
    {"vbw", "averagingMethod", "vbw"},
    {"vbw", "autoVBW", "false"},
    {"fullScale", "autoFullScale", "false"},
    {"timeSpan", "autoTimeSpan", "false"},
    {"timeResolution", "autoTimeResolution", "false"},
    {"upperMask", "enabledMasks", "upper"},
    {"lowerMask", "enabledMasks", "lower"},
    {"upperMask", "spectralMaskEnabled", "true"},
    {"lowerMask", "spectralMaskEnabled", "true"},
    {"level", "autoLevel", "false"},
    {"highStateLevel", "autoStateLevel", "false"},
    {"lowStateLevel", "autoStateLevel", "false"},
};

std::string asText(double value) {
    return formatQuantity(value, "", 17);
}

}  // namespace

void presetFrequencySpan(double lowest, double highest, DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    const auto isChosen = [&](std::string_view option) { return settings.isChosen(estimator, option); };
    if (isChosen("startFrequency") || isChosen("stopFrequency")) {
        settings.preset(estimator, "frequencySpan", "start-and-stop-frequencies");
        settings.preset(estimator, "startFrequency", asText(lowest));
        settings.preset(estimator, "stopFrequency", asText(highest));
    } else if (isChosen("span") || isChosen("centerFrequency")) {
        settings.preset(estimator, "frequencySpan", "span-and-center-frequency");
        settings.preset(estimator, "centerFrequency", asText((lowest + highest) / 2.0));
        const double center = *parseNumber(settings.value(estimator, "centerFrequency"));
        const double widest = 2.0 * std::min(center - lowest, highest - center);
        if (!(widest > 0.0) && !isChosen("span")) {
            throw UsageError("centerFrequency: " + formatQuantity(center, "Hz") + " does not lie within " +
                             formatQuantity(lowest, "Hz") + " to " + formatQuantity(highest, "Hz"));
        }
        settings.preset(estimator, "span", asText(widest));
    }
}

void presetImpliedOptions(DeckSettings& settings) {
    for (const auto stage : settings.stages()) {
        for (const auto& implied : impliedOptions) {
            if (settings.isChosen(stage, implied.option) && settings.has(stage, implied.needed)) {
                settings.preset(stage, implied.needed, std::string(implied.value));
            }
        }
        if (settings.isChosen(stage, "upperMask") && settings.isChosen(stage, "lowerMask")) {
            settings.preset(stage, "enabledMasks", "upper-and-lower");
        }
    }
}

}  // namespace program
