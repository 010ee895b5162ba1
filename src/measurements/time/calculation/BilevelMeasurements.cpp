#include "BilevelMeasurements.h"

#include <algorithm>
#include <span>

#include "BilevelAberrations.h"
#include "BilevelCrossings.h"
#include "BilevelCycles.h"
#include "BilevelTransitionAverages.h"
#include "BilevelTransitionWalk.h"
#include "SpanKernels.h"

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
    // That times rise is found out on the way, and what was measured in that belief is dropped where one falls.
    if (!measureTransitions(span, levels, true)) {
        measureTransitions(span, levels, false);
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

bool BilevelMeasurements::measureTransitions(const BilevelSpan& span, const BilevelLevels& levels, bool timesRise) {
    BilevelTransitionWalk walk(span, levels);
    BilevelCrossings crossings(span, levels);
    BilevelTransitionAverages averages;
    // The tolerance is of another order than the state band, and not the same number to the last bit: meant so.
    BilevelAberrations aberrations(span, levels, {levels.amplitude * stateLevelTolerance / 100.0, settleSeek},
                                   timesRise);
    BilevelCycles cycles;
    std::vector<BilevelTransition> transitions;  // of a block, behind the one before whose successor is to be found
    for (std::ptrdiff_t begin = 0; begin < span.count; begin += bilevelBlockSamples) {
        const std::ptrdiff_t end = std::min(begin + bilevelBlockSamples, span.count);
        const std::ptrdiff_t pairs = std::min(end + 1, span.count) - begin;
        if (timesRise && computeAberrations &&
            !spanKernels().neverFalls(span.t + begin, static_cast<std::size_t>(pairs))) {
            return false;
        }
        const std::size_t measured = transitions.size();
        walk.advance(end, transitions);
        const std::span added = std::span(transitions).subspan(measured);
        crossings.measure(added);
        for (const BilevelTransition& transition : added) {
            const bool isInSpan = span.contains(transition.midCrossTime);
            averages.add(transition, isInSpan);
            cycles.add(transition, isInSpan);
        }
        if (transitions.size() > 1) {
            if (computeAberrations) {
                aberrations.add(std::span(transitions).first(transitions.size() - 1), transitions.back().start);
            }
            transitions.erase(transitions.begin(), transitions.end() - 1);
        }
    }
    if (computeTransitions && walk.hasStateSamples()) {
        averages.write(metrics);
    }
    if (computeAberrations && !transitions.empty()) {
        aberrations.add(transitions, span.count);
        aberrations.write(metrics);
    }
    if (computeCycles) {
        cycles.write(metrics);
    }
    return true;
}

}  // namespace dspwavedecks
