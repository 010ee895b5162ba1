#include "CrossingTimes.h"

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "LevelComparator.h"

namespace deckutil {

namespace {

#define VECTOR_KERNELS "CrossingTimes.inl"
#include "VectorVariants.inl"

}  // namespace

CrossingTimes crossingTimes(dspwavedecks::InstructionSet set) {
    return set == dspwavedecks::InstructionSet::avx2 ? avx2::interpolateCrossings : portable::interpolateCrossings;
}

CrossingTimes crossingTimes() {
    static const CrossingTimes best = crossingTimes(dspwavedecks::avx2OrPortable());
    return best;
}

}  // namespace deckutil
