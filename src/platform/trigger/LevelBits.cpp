#include "LevelBits.h"

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace deckutil {

namespace {

#define VECTOR_KERNELS "LevelBits.inl"
#include "VectorVariants.inl"

}  // namespace

LevelComparison levelComparison(dspwavedecks::InstructionSet set) {
    return set == dspwavedecks::InstructionSet::avx2 ? avx2::compareWithLevel : portable::compareWithLevel;
}

TimeComparison countBefore(dspwavedecks::InstructionSet set) {
    return set == dspwavedecks::InstructionSet::avx2 ? avx2::countTimesBefore : portable::countTimesBefore;
}

LevelComparison levelComparison() {
    static const LevelComparison best = levelComparison(dspwavedecks::avx2OrPortable());
    return best;
}

TimeComparison countBefore() {
    static const TimeComparison best = countBefore(dspwavedecks::avx2OrPortable());
    return best;
}

}  // namespace deckutil
