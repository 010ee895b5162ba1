#include "QuietRun.h"

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace deckutil {

namespace {

#define VECTOR_KERNELS "QuietRun.inl"
#include "VectorVariants.inl"

}  // namespace

QuietRun quietRun(dspwavedecks::InstructionSet set) {
    return set == dspwavedecks::InstructionSet::avx2 ? avx2::countQuiet : portable::countQuiet;
}

QuietRun quietRun() {
    static const QuietRun best = quietRun(dspwavedecks::avx2OrPortable());
    return best;
}

}  // namespace deckutil
