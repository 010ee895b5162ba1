// Period, frequency, pulse widths and duty cycles of a pulse waveform, from the crossings of its mid level.
#include <algorithm>
#include <vector>

#include "BilevelMeasurements.h"

namespace dspwavedecks {

namespace {

constexpr double unmeasured = bilevelMeasurementsStruct::unmeasured;

struct PulseFigures {
    double pulses = unmeasured;
    double width = unmeasured;
    double dutyCycle = unmeasured;
};

/// The pulses that begin at the crossings first, first + 2, ... The last one has a width but no duty cycle where the
/// crossing behind it is missing, so that there may be a width more than there are duty cycles. Meant so.
PulseFigures measurePulses(const std::vector<double>& crossings, std::size_t first) {
    double pulses = 0.0;
    double widths = 0.0;
    double dutyCycles = 0.0;
    double cycles = 0.0;
    for (std::size_t i = first + 1; i < crossings.size(); i += 2) {
        const double width = crossings[i] - crossings[i - 1];
        widths += width;
        pulses += 1.0;
        if (i + 1 < crossings.size()) {
            const double cycle = crossings[i + 1] - crossings[i - 1];
            dutyCycles += cycle == 0.0 ? unmeasured : width / cycle;
            cycles += 1.0;
        }
    }
    if (pulses == 0.0) {
        return {};
    }
    return {pulses, widths / pulses, dutyCycles * 100.0 / cycles};
}

}  // namespace

void BilevelMeasurements::computeCyclesMetrics(const BilevelTransitions& transitions) {
    const std::size_t count = transitions.midCrossTimes.size();
    // All transitions must have their crossing in the span, and there must be two crossings at even positions.
    if (!transitions.hasStateSamples || transitions.inSpan.size() < count || count < 3) {
        return;
    }
    // Every other crossing, whatever its polarity: transitions alternate.
    const std::vector<double>& crossings = transitions.midCrossTimes;
    double periods = 0.0;
    double periodCount = 0.0;
    for (std::size_t i = 2; i < count; i += 2) {
        periods += crossings[i] - crossings[i - 2];
        periodCount += 1.0;
    }
    metrics.period = periods / periodCount;
    metrics.frequency = metrics.period == 0.0 ? unmeasured : 1.0 / metrics.period;

    const auto firstOf = [&](bool rising) {
        const auto isWanted = [rising](int polarity) { return (polarity >= 1) == rising; };
        return static_cast<std::size_t>(
            std::find_if(transitions.polarities.begin(), transitions.polarities.end(), isWanted) -
            transitions.polarities.begin());
    };
    const PulseFigures positive = measurePulses(crossings, firstOf(true));
    metrics.posPulses = positive.pulses;
    metrics.posWidth = positive.width;
    metrics.posDutyCycle = positive.dutyCycle;
    const PulseFigures negative = measurePulses(crossings, firstOf(false));
    metrics.negPulses = negative.pulses;
    metrics.negWidth = negative.width;
    metrics.negDutyCycle = negative.dutyCycle;
}

}  // namespace dspwavedecks
