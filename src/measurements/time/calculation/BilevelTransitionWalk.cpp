#include "BilevelTransitionWalk.h"

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

}  // namespace

void BilevelTransitionWalk::advance(Index until, std::vector<BilevelTransition>& found) {
    if (levels.lowStateBound <= levels.highStateBound) {
        walkSwings(until, found);
    } else {
        walkSamples(until, found);
    }
    position = until;
}

/// With bounds in order no sample lies in both states: the next one in the other state is a transition.
void BilevelTransitionWalk::walkSwings(Index until, std::vector<BilevelTransition>& found) {
    const SpanKernels& kernels = spanKernels();
    const auto firstIn = [&](unsigned wanted, Index begin, Index end) {
        const auto count = static_cast<std::size_t>(end - begin);
        return begin + static_cast<Index>(wanted == inHighState
                                              ? kernels.findAbove(span.x + begin, count, levels.highStateBound)
                                              : kernels.findBelow(span.x + begin, count, levels.lowStateBound));
    };
    Index i = position;
    if (state == 0) {
        i = firstIn(inHighState, i, firstIn(inLowState, i, until));
        if (i == until) {
            return;
        }
        state = statesOf(span.x[i], levels);
    }
    while (true) {
        const unsigned other = inLowState + inHighState - state;
        i = firstIn(other, i, until);
        if (i == until) {
            return;
        }
        found.push_back({none, i, other == inHighState, 0.0, 0.0, 0.0});
        state = other;
    }
}

void BilevelTransitionWalk::walkSamples(Index until, std::vector<BilevelTransition>& found) {
    for (Index i = position; i < until; ++i) {
        const unsigned next = statesOf(span.x[i], levels);
        if (isTransition(state, next)) {
            found.push_back({none, i, (state & inLowState) != 0, 0.0, 0.0, 0.0});
        }
        state = next != 0 ? next : state;
    }
}

}  // namespace dspwavedecks
