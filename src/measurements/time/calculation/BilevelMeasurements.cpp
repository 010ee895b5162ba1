#include "BilevelMeasurements.h"

namespace dspwavedecks {

const bilevelMeasurementsStruct* BilevelMeasurements::computeBilevelMetrics(const double* data,
                                                                            const std::vector<unsigned long>& range) {
    if (range[1] <= range[0]) {
        return &metrics;
    }
    const BilevelSpan span{data, data + range[0], static_cast<std::ptrdiff_t>(range[1] - range[0])};
    reset();
    metrics.highStateLevel = highStateLevel;
    metrics.lowStateLevel = lowStateLevel;
    if (autoStateLevel) {
        computeStateLevels(span);
        metrics.highStateLevel = autoHighStateLevel;
        metrics.lowStateLevel = autoLowStateLevel;
    }
    metrics.amplitude = metrics.highStateLevel - metrics.lowStateLevel;

    const BilevelLevels levels = referenceLevels();
    BilevelTransitions transitions;
    computeTransitionsMetrics(span, levels, transitions);
    if (computeAberrations) {
        computeAberrationsMetrics(span, levels, transitions);
    }
    if (computeCycles) {
        computeCyclesMetrics(transitions);
    }
    return &metrics;
}

BilevelLevels BilevelMeasurements::referenceLevels() const {
    const double high = metrics.highStateLevel;
    const double low = metrics.lowStateLevel;
    const double unit = metrics.amplitude / 100.0;
    const double band = unit * stateLevelTolerance;
    return {high,
            low,
            metrics.amplitude,
            high - band,
            low + band,
            low + unit * upperReferenceLevel,
            low + unit * midReferenceLevel,
            low + unit * lowerReferenceLevel};
}

}  // namespace dspwavedecks
