#include "BilevelCrossings.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "bilevelMeasurementsStruct.h"

namespace dspwavedecks {

namespace {

constexpr double unmeasured = bilevelMeasurementsStruct::unmeasured;
constexpr double infinity = std::numeric_limits<double>::infinity();

/// The highest bit that is set.
int lastOf(std::uint64_t bits) {
    return 63 - std::countl_zero(bits);
}

bool isPast(double x, double level, bool rising) {
    return rising ? x > level : x < level;
}

}  // namespace

BilevelCrossings::BilevelCrossings(const BilevelSpan& measuredSpan, const BilevelLevels& referenceLevels)
    : span(measuredSpan),
      levels(referenceLevels),
      kernels(spanKernels()),
      durations{durationLevels(-1), durationLevels(1)},
      // Before the start of a falling edge lie the samples that are equal to the level as well.
      edges{
          {-1.0, -levels.highStateBound, std::nextafter(-durations[0].start, infinity), -levels.mid, -durations[0].end},
          {1.0, levels.lowStateBound, durations[1].start, levels.mid, durations[1].end}},
      isComparable(levels.lowStateBound <= levels.highStateBound && std::isfinite(durations[0].start)) {}

BilevelCrossings::DurationLevels BilevelCrossings::durationLevels(int polarity) const {
    return {levelByPolarity(levels.lower, levels.upper, polarity),
            levelByPolarity(levels.upper, levels.lower, polarity)};
}

void BilevelCrossings::measure(std::span<BilevelTransition> transitions) {
    // In two loops, so that the second one doesn't wait for what the first one finds.
    intervals.resize(transitions.size());
    for (std::size_t i = 0; i < transitions.size(); ++i) {
        loadAhead(transitions[i].end);
        if (!findInShortEdge(transitions[i], intervals[i])) {
            intervals[i] = findInLongEdge(transitions[i]);
        }
    }
    for (std::size_t i = 0; i < transitions.size(); ++i) {
        BilevelTransition& edge = transitions[i];
        const DurationLevels& level = durations[edge.rising ? 1 : 0];
        edge.midCrossTime = span.crossing(levels.mid, intervals[i].mid);
        edge.duration = span.crossing(level.end, intervals[i].last) - span.crossing(level.start, intervals[i].first);
        edge.slewRate = edge.duration == 0.0 ? unmeasured : (level.end - level.start) / edge.duration;
    }
}

/// Begins to load what the next block has up to the place of an edge in this one: memory works while edges are
/// measured.
void BilevelCrossings::loadAhead(Index end) {
    constexpr Index longest = 256;
    const Index until = std::min(end + bilevelBlockSamples, span.count);
    span.prefetch(std::max(loaded, until - longest), until);
    loaded = until;
}

/// Finds start and intervals where few samples lie between the states, without loops whose ends noise makes
/// unforeseeable. Returns false for a long edge, one near the start of the span, and one that never crosses the mid
/// level.
bool BilevelCrossings::findInShortEdge(BilevelTransition& edge, Intervals& found) const {
    constexpr int end = edgeSamples - 1;
    const Index origin = edge.end - end;
    if (origin < 0 || !isComparable) {
        return false;
    }
    constexpr std::uint64_t one = 1;
    constexpr std::uint64_t beforeEnd = (one << end) - 1;
    const EdgeBits bits = kernels.compareEdge(span.x + origin, edges[edge.rising ? 1 : 0]);
    const std::uint64_t left = bits.inState & beforeEnd;
    const std::uint64_t fromStart = ~std::uint64_t{0} << lastOf(left | one);
    const std::uint64_t crossesMid = bits.notPastMid & bits.pastMid >> 1 & fromStart & beforeEnd;
    if (left == 0 || crossesMid == 0) {
        return false;
    }
    const int mid = std::countr_zero(crossesMid);
    const std::uint64_t beforeStart = bits.beforeStart & fromStart & ((std::uint64_t{4} << mid) - 1);
    const std::uint64_t pastEnd = bits.pastEnd & ~std::uint64_t{0} << mid;
    edge.start = origin + lastOf(left);
    found.mid = origin + mid;
    const Index notBefore = edge.start == 0 ? none : found.mid;
    found.first = beforeStart != 0 ? origin + lastOf(beforeStart) : notBefore;
    found.last = (pastEnd != 0 ? origin + std::countr_zero(pastEnd) : found.first) - 1;
    return true;
}

BilevelCrossings::Intervals BilevelCrossings::findInLongEdge(BilevelTransition& edge) {
    const DurationLevels& level = durations[edge.rising ? 1 : 0];
    edge.start = edge.end - 1;
    while (!(span.x[edge.start] < levels.lowStateBound) && !(span.x[edge.start] > levels.highStateBound)) {
        --edge.start;
    }
    Intervals found;
    found.mid = mid(edge.start, edge.end, edge.rising);
    found.first = first(found.mid, edge.start, level.start, edge.rising);
    found.last = last(found.mid, edge.end, level.end, edge.rising, found.first);
    return found;
}

/// First interval from start to end in which the mid level is crossed; interval 0 if there is none.
BilevelCrossings::Index BilevelCrossings::mid(Index start, Index end, bool rising) const {
    for (Index k = start; k < end; ++k) {
        const double here = span.x[k];
        const double next = span.x[k + 1];
        if (rising ? here <= levels.mid && levels.mid < next : here >= levels.mid && levels.mid > next) {
            return k;
        }
    }
    return 0;
}

/// Interval of the crossing of the start level: downward from the mid interval to the start of the edge. If no sample
/// lies on the near side it is the mid interval, and `none` for an edge that starts at sample 0, where the search would
/// go on below it.
BilevelCrossings::Index BilevelCrossings::first(Index mid, Index start, double startLevel, bool rising) const {
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

/// Interval of the crossing of the end level, upward from the mid interval to the end of the edge; may lie below 0 if
/// there is none.
BilevelCrossings::Index BilevelCrossings::last(Index mid, Index end, double endLevel, bool rising, Index first) {
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

/// First sample of the span past the end level, found once for each polarity: edges without a mid crossing all search
/// from there.
BilevelCrossings::Index BilevelCrossings::fromSpanStart(double endLevel, bool rising) {
    Index& found = rising ? firstAbove : firstBelow;
    if (found == none) {
        found = 0;
        while (found < span.count && !isPast(span.x[found], endLevel, rising)) {
            ++found;
        }
    }
    return found;
}

}  // namespace dspwavedecks
