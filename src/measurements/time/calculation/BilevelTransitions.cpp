// Transitions of a pulse waveform between its two states, and the figures averaged over them.
#include <algorithm>
#include <bit>

#include "BilevelMeasurements.h"
#include "SpanKernels.h"

namespace dspwavedecks {

namespace {

using Index = std::ptrdiff_t;

constexpr Index none = -1;
constexpr unsigned inLowState = 1;
constexpr unsigned inHighState = 2;

/// The states that a sample lies in: none in the band between the bounds and for NaN, and both when the bounds are out
/// of order.
unsigned statesOf(double x, const BilevelLevels& levels) {
    return (x < levels.lowStateBound ? inLowState : 0) | (x > levels.highStateBound ? inHighState : 0);
}

bool isTransition(unsigned from, unsigned to) {
    return ((from & inLowState) && (to & inHighState)) || ((from & inHighState) && (to & inLowState));
}

Index lastStateSampleBefore(const BilevelSpan& span, const BilevelLevels& levels, Index index) {
    do {
        --index;
    } while (statesOf(span.x[index], levels) == 0);
    return index;
}

/// Finds the pairs of neighbouring state samples in different states. Only the state of the last state sample is kept:
/// samples in that same state or in none are passed over.
class TransitionWalk {
public:
    TransitionWalk(const BilevelSpan& walkedSpan, const BilevelLevels& stateLevels, BilevelTransitions& found)
        : span(walkedSpan), levels(stateLevels), transitions(found), kernels(spanKernels()) {}

    void run() {
        if (levels.lowStateBound <= levels.highStateBound) {
            walkSwings();
        } else {
            walkSamples();
        }
        transitions.hasStateSamples = state != 0;
    }

private:
    /// With bounds in order no sample lies in both states: the next one in the other state is a transition.
    void walkSwings() {
        Index i = nextHigh(0, nextLow(0, span.count));
        if (i == span.count) {
            return;
        }
        state = statesOf(span.x[i], levels);
        while (true) {
            i = state == inLowState ? nextHigh(i, span.count) : nextLow(i, span.count);
            if (i == span.count) {
                return;
            }
            add(i);
            state = state == inLowState ? inHighState : inLowState;
        }
    }

    void walkSamples() {
        for (Index i = 0; i < span.count; ++i) {
            const unsigned next = statesOf(span.x[i], levels);
            if (isTransition(state, next)) {
                add(i);
            }
            state = next != 0 ? next : state;
        }
    }

    void add(Index end) {
        transitions.startIndices.push_back(lastStateSampleBefore(span, levels, end));
        transitions.endIndices.push_back(end);
    }

    /// First sample of begin .. end in a state; end if there is none.
    Index nextHigh(Index begin, Index end) const {
        const auto count = static_cast<std::size_t>(end - begin);
        return begin + static_cast<Index>(kernels.findAbove(span.x + begin, count, levels.highStateBound));
    }
    Index nextLow(Index begin, Index end) const {
        const auto count = static_cast<std::size_t>(end - begin);
        return begin + static_cast<Index>(kernels.findBelow(span.x + begin, count, levels.lowStateBound));
    }

    const BilevelSpan& span;
    const BilevelLevels& levels;
    BilevelTransitions& transitions;
    const SpanKernels& kernels;
    unsigned state = 0;
};

/// The sample intervals, by the index of their first sample, in which a transition crosses its reference levels.
struct CrossingIntervals {
    Index mid, first, last;
};

/// One transition, and the levels at which its duration starts and ends.
struct Transition {
    Index start, end;
    bool rising;
    double startLevel, endLevel;
};

/// Finds the sample intervals in which one transition crosses its reference levels. A falling transition is the mirror
/// image of a rising one, but for the equal sign of the search for the start.
class CrossingSearch {
public:
    CrossingSearch(const BilevelSpan& searchedSpan, const BilevelLevels& referenceLevels)
        : span(searchedSpan), levels(referenceLevels), kernels(spanKernels()) {}

    CrossingIntervals find(const Transition& edge) {
        CrossingIntervals found;
        if (!findInShortEdge(edge, found)) {
            found.mid = mid(edge.start, edge.end, edge.rising);
            found.first = first(found.mid, edge.start, edge.startLevel, edge.rising);
            found.last = last(found.mid, edge.end, edge.endLevel, edge.rising, found.first);
        }
        return found;
    }

private:
    /// The same three intervals where few samples lie between the states, without loops whose ends noise makes
    /// unforeseeable. Returns false for a long edge, one at the end of the span, and one that never crosses the mid
    /// level.
    bool findInShortEdge(const Transition& edge, CrossingIntervals& found) const {
        constexpr auto samples = static_cast<Index>(edgeSamples);
        const Index length = edge.end - edge.start;
        if (length >= samples || edge.start + samples > span.count) {
            return false;
        }
        const EdgeBits bits = kernels.compareEdge(span.x + edge.start, levels.mid, edge.startLevel, edge.endLevel);
        const std::uint64_t beyondMid = edge.rising ? bits.aboveMid : bits.belowMid;
        const std::uint64_t upToEnd = (std::uint64_t{2} << length) - 1;
        const std::uint64_t crossesMid = ~beyondMid & bits.isOrdered & beyondMid >> 1 & upToEnd >> 1;
        if (crossesMid == 0) {
            return false;
        }
        const int mid = std::countr_zero(crossesMid);
        const std::uint64_t nearStart =
            (edge.rising ? bits.belowStart : ~bits.belowStart & bits.isOrdered) & ((std::uint64_t{4} << mid) - 1);
        const std::uint64_t pastEnd =
            (edge.rising ? bits.aboveEnd : bits.belowEnd) & upToEnd & ~std::uint64_t{0} << mid;
        const Index notNear = edge.start == 0 ? none : edge.start + mid;
        found.mid = edge.start + mid;
        found.first = nearStart != 0 ? edge.start + 63 - std::countl_zero(nearStart) : notNear;
        found.last = (pastEnd != 0 ? edge.start + std::countr_zero(pastEnd) : found.first) - 1;
        return true;
    }

    /// First interval from start to end in which the mid level is crossed; interval 0 if there is none.
    Index mid(Index start, Index end, bool rising) const {
        for (Index k = start; k < end; ++k) {
            const double here = span.x[k];
            const double next = span.x[k + 1];
            if (rising ? here <= levels.mid && levels.mid < next : here >= levels.mid && levels.mid > next) {
                return k;
            }
        }
        return 0;
    }

    /// Interval of the crossing of the start level: downward from the mid interval to the start of the transition. If
    /// no sample lies on the near side it is the mid interval, and `none` for a transition that starts at sample 0,
    /// where the search would go on below it.
    Index first(Index mid, Index start, double startLevel, bool rising) const {
        if (mid + 1 < start) {
            return mid;
        }
        for (Index i = mid + 1; i >= start; --i) {
            if (rising ? span.x[i] < startLevel : span.x[i] >= startLevel) {
                return i;
            }
        }
        return start == 0 ? none : mid;
    }

    /// Interval of the crossing of the end level, upward from the mid interval to the end of the transition; may lie
    /// below 0 if there is none.
    Index last(Index mid, Index end, double endLevel, bool rising, Index first) {
        Index f = mid;
        if (mid == 0) {
            f = fromSpanStart(endLevel, rising);
        } else {
            while (f <= end && !isPast(span.x[f], endLevel, rising)) {
                ++f;
            }
        }
        return (f <= end ? f : first) - 1;
    }

    static bool isPast(double x, double level, bool rising) { return rising ? x > level : x < level; }

    /// First sample of the span past the end level, found once for each polarity: transitions without a mid crossing
    /// all search from there.
    Index fromSpanStart(double endLevel, bool rising) {
        Index& found = rising ? firstAbove : firstBelow;
        if (found == none) {
            found = 0;
            while (found < span.count && !isPast(span.x[found], endLevel, rising)) {
                ++found;
            }
        }
        return found;
    }

    const BilevelSpan& span;
    const BilevelLevels& levels;
    const SpanKernels& kernels;
    Index firstAbove = none;
    Index firstBelow = none;
};

}  // namespace

void BilevelMeasurements::computeTransitionsMetrics(const BilevelSpan& span, const BilevelLevels& levels,
                                                    BilevelTransitions& transitions) {
    TransitionWalk(span, levels, transitions).run();
    if (!transitions.hasStateSamples) {
        return;
    }
    const std::size_t count = transitions.startIndices.size();
    transitions.polarities.reserve(count);
    transitions.midCrossTimes.reserve(count);
    transitions.durations.reserve(count);
    std::vector<double> slewRates;
    slewRates.reserve(count);
    const double startLevels[] = {levelByPolarity(levels.lower, levels.upper, -1),
                                  levelByPolarity(levels.lower, levels.upper, 1)};
    const double endLevels[] = {levelByPolarity(levels.upper, levels.lower, -1),
                                levelByPolarity(levels.upper, levels.lower, 1)};
    CrossingSearch search(span, levels);
    for (std::size_t i = 0; i < count; ++i) {
        span.prefetch(transitions.startIndices[std::min(i + prefetchDistance, count - 1)]);
        const Index start = transitions.startIndices[i];
        const Index end = transitions.endIndices[i];
        const bool rising = span.x[start] < levels.lowStateBound;
        const int polarity = rising ? 1 : -1;
        const double startLevel = startLevels[rising];
        const double endLevel = endLevels[rising];
        const auto [mid, first, last] = search.find({start, end, rising, startLevel, endLevel});

        const double midCross = span.crossing(levels.mid, mid);
        const double duration = span.crossing(endLevel, last) - span.crossing(startLevel, first);
        transitions.polarities.push_back(polarity);
        transitions.midCrossTimes.push_back(midCross);
        transitions.durations.push_back(duration);
        slewRates.push_back(duration == 0.0 ? bilevelMeasurementsStruct::unmeasured
                                            : (endLevel - startLevel) / duration);
        if (span.contains(midCross)) {
            transitions.inSpan.push_back(i);
        }
    }
    if (computeTransitions) {
        averageTransitions(transitions, slewRates);
    }
}

void BilevelMeasurements::averageTransitions(const BilevelTransitions& transitions,
                                             const std::vector<double>& slewRates) {
    struct Side {
        double edges = 0.0;
        double duration = 0.0;
        double slewRate = 0.0;
    };
    Side positive;
    Side negative;
    // The entries at the positions of the list of transitions in the span, not those of the numbers it holds: where a
    // transition lies outside the span the last ones fall away, whichever it was. Meant so.
    for (std::size_t n = 0; n < transitions.inSpan.size(); ++n) {
        Side& side = transitions.polarities[n] >= 1 ? positive : negative;
        side.edges += 1.0;
        side.duration += transitions.durations[n];
        side.slewRate += slewRates[n];
    }
    // A side without transitions gives 0 / 0.
    metrics.posEdges = positive.edges;
    metrics.riseTime = positive.duration / positive.edges;
    metrics.posSlewRate = positive.slewRate / positive.edges;
    metrics.negEdges = negative.edges;
    metrics.fallTime = negative.duration / negative.edges;
    metrics.negSlewRate = negative.slewRate / negative.edges;
}

}  // namespace dspwavedecks
