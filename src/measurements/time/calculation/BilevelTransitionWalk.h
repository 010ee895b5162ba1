#pragma once

#include <cstddef>
#include <vector>

#include "BilevelWorkingSet.h"

namespace dspwavedecks {

/// Finds the transitions of a span from its start to its end, in steps of any length: the pairs of neighbouring state
/// samples in different states. Only the state of the last state sample is kept: samples in that same state or in none
/// are passed over.
class BilevelTransitionWalk {
public:
    BilevelTransitionWalk(const BilevelSpan& walkedSpan, const BilevelLevels& stateLevels)
        : span(walkedSpan), levels(stateLevels) {}

    /// Goes on to the sample before `until` and appends the transitions that end on the way, with their end
    /// and direction.
    void advance(std::ptrdiff_t until, std::vector<BilevelTransition>& found);

    /// Whether a sample so far lies in a state.
    bool hasStateSamples() const { return state != 0; }

private:
    void walkSwings(std::ptrdiff_t until, std::vector<BilevelTransition>& found);
    void walkSamples(std::ptrdiff_t until, std::vector<BilevelTransition>& found);

    const BilevelSpan& span;
    const BilevelLevels& levels;

    // State.
    std::ptrdiff_t position = 0;
    unsigned state = 0;
};

}  // namespace dspwavedecks
