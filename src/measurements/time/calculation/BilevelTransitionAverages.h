#pragma once

#include <cstddef>
#include <vector>

#include "BilevelWorkingSet.h"
#include "bilevelMeasurementsStruct.h"

namespace dspwavedecks {

/// Counts the transitions whose mid crossing lies in the span and averages their durations and slew rates, of each
/// direction.
///
/// The figures are those at the positions of the list of transitions in the span, not those of the numbers it holds:
/// where a transition lies outside the span the last ones fall away, whichever it was. Meant so.
class BilevelTransitionAverages {
public:
    void add(const BilevelTransition& transition, bool isInSpan) {
        if (isInSpan && waiting.empty()) {
            count(transition);
            return;
        }
        waiting.push_back(transition);
        if (isInSpan) {
            count(waiting[counted++]);
        }
    }

    void write(bilevelMeasurementsStruct& metrics) const {
        // A side without transitions gives 0 / 0.
        const Side& positive = sides[1];
        metrics.posEdges = positive.edges;
        metrics.riseTime = positive.duration / positive.edges;
        metrics.posSlewRate = positive.slewRate / positive.edges;
        const Side& negative = sides[0];
        metrics.negEdges = negative.edges;
        metrics.fallTime = negative.duration / negative.edges;
        metrics.negSlewRate = negative.slewRate / negative.edges;
    }

private:
    struct Side {
        double edges = 0.0;
        double duration = 0.0;
        double slewRate = 0.0;
    };

    void count(const BilevelTransition& transition) {
        Side& side = sides[transition.rising ? 1 : 0];
        side.edges += 1.0;
        side.duration += transition.duration;
        side.slewRate += transition.slewRate;
    }

    // State.
    Side sides[2];                           ///< falling, rising
    std::vector<BilevelTransition> waiting;  ///< from the first one on that lies outside the span
    std::size_t counted = 0;                 ///< of those waiting
};

}  // namespace dspwavedecks
