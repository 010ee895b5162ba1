#include "MaskFailures.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "EngineeringNumber.h"
#include "LimitLine.h"
#include "MeasurementReports.h"
#include "TextLists.h"

namespace program {
namespace {

using Record = dspwavedecks::spectrumEstimatorMetaDataStruct;
using Finding = AnnotationList::Finding;

constexpr std::string_view maskStage = "spectral_mask_tester_filter";

std::vector<double> numbersOf(const DeckSettings& settings, std::string_view option) {
    std::vector<double> numbers;
    for (const auto& text : split(settings.value(maskStage, option), ',')) {
        numbers.push_back(parseNumber(text).value_or(std::numeric_limits<double>::quiet_NaN()));
    }
    return numbers;
}

double offsetOf(const Record& spectrum, std::size_t channel) {
    return channel < spectrum.frequencyOffset.size() ? spectrum.frequencyOffset[channel] : 0.0;
}

/// By how much each bin passes the limit line of that option, at most, over the channels so far.
/// sign      1 for an upper line, -1 for a lower one
/// excesses  [bins] dB
void addExcesses(const Record& spectrum, std::size_t channel, const DeckSettings& settings, std::string_view option,
                 double sign, double reference, std::vector<double>& excesses) {
    const auto levels = newestSpectrum(spectrum, 0, channel);
    const dspwavedecks::LimitLine line(numbersOf(settings, option), numbersOf(settings, "frequencyLimits"),
                                       numbersOf(settings, "maskFrequencyOffset").front());
    for (std::size_t bin = 0; bin < std::min(levels.size(), excesses.size()); ++bin) {
        const double limit = line.levelAt(spectrum.frequencyVector[bin] + offsetOf(spectrum, channel));
        const double excess = sign * (levels[bin] - (reference + limit));
        excesses[bin] = excess > excesses[bin] ? excess : excesses[bin];
    }
}

}  // namespace

std::vector<Finding> findMaskFailures(const Record& spectrum, const dspwavedecks::spectralMaskStruct& mask,
                                      const DeckSettings& settings) {
    const auto& grid = spectrum.frequencyVector;
    const auto masks = settings.value(maskStage, "enabledMasks");
    const auto unit = levelUnit(settings);
    const auto reference = ", reference level " + formatQuantity(mask.spectrumPeak, unit);
    std::vector<double> excesses(grid.size(), 0.0);
    const auto channels = spectrum.numChannels.empty() ? 0 : static_cast<std::size_t>(spectrum.numChannels.front());
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (masks.starts_with("upper")) {
            addExcesses(spectrum, channel, settings, "upperMask", 1.0, mask.spectrumPeak, excesses);
        }
        if (masks.ends_with("lower")) {
            addExcesses(spectrum, channel, settings, "lowerMask", -1.0, mask.spectrumPeak, excesses);
        }
    }
    const double halfBin =
        grid.size() < 2 ? 0.0 : (grid.back() - grid.front()) / static_cast<double>(grid.size() - 1) / 2.0;
    const double offset = offsetOf(spectrum, 0);
    std::vector<Finding> findings;
    for (std::size_t first = 0; first < grid.size(); ++first) {
        std::size_t end = first;
        while (end < grid.size() && excesses[end] > 0.0) {
            ++end;
        }
        if (end == first) {
            continue;
        }
        const auto worst = std::max_element(excesses.begin() + static_cast<std::ptrdiff_t>(first),
                                            excesses.begin() + static_cast<std::ptrdiff_t>(end));
        const double lower = grid[first] - halfBin + offset;
        const double upper = grid[end - 1] + halfBin + offset;
        const double place = grid[static_cast<std::size_t>(worst - excesses.begin())] + offset;
        findings.push_back({"mask failure", (lower + upper) / 2.0, lower, upper, *worst,
                            formatQuantity(*worst, unit.starts_with("dB") ? "dB" : unit) + " outside of the mask at " +
                                formatQuantity(place, "Hz", 12) + ", masks: " + masks + reference});
        first = end;
    }
    if (findings.empty() && !grid.empty()) {
        const double lower = grid.front() + offset;
        const double upper = grid.back() + offset;
        findings.push_back({"mask failure", (lower + upper) / 2.0, lower, upper, 0.0, "masks: " + masks + reference});
    }
    return findings;
}

}  // namespace program
