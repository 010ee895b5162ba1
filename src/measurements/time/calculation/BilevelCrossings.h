#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "BilevelWorkingSet.h"
#include "SpanKernels.h"

namespace dspwavedecks {

/// Measures where the transitions of one span cross the reference levels. A falling transition is the mirror image of a
/// rising one, but for the equal sign of the search for the start.
class BilevelCrossings {
public:
    BilevelCrossings(const BilevelSpan& measuredSpan, const BilevelLevels& referenceLevels);

    /// Sets start, crossing time, duration and slew rate of transitions from their ends and directions.
    void measure(std::span<BilevelTransition> transitions);

private:
    using Index = std::ptrdiff_t;

    /// The levels at which the duration of an edge starts and ends.
    struct DurationLevels {
        double start, end;
    };
    /// The sample intervals, by the index of their first sample, in which an edge crosses its reference levels.
    struct Intervals {
        Index mid, first, last;
    };

    DurationLevels durationLevels(int polarity) const;
    void loadAhead(Index end);
    bool findInShortEdge(BilevelTransition& edge, Intervals& found) const;
    Intervals findInLongEdge(BilevelTransition& edge);
    Index mid(Index start, Index end, bool rising) const;
    Index first(Index mid, Index start, double startLevel, bool rising) const;
    Index last(Index mid, Index end, double endLevel, bool rising, Index first);
    Index fromSpanStart(double endLevel, bool rising);

    static constexpr Index none = -1;

    // Options.
    const BilevelSpan& span;
    const BilevelLevels& levels;
    const SpanKernels& kernels;

    // Derived, for falling and rising edges.
    const DurationLevels durations[2];
    const EdgeLevels edges[2];
    const bool isComparable;  ///< whether samples can be compared by `edges`

    // State.
    Index loaded = 0;  ///< samples before have been loaded, or been passed over
    // First sample of the span past the end level of an edge, once it has been asked for.
    Index firstAbove = none;
    Index firstBelow = none;

    // Scratch.
    std::vector<Intervals> intervals;
};

}  // namespace dspwavedecks
