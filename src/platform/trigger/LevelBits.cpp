#include "LevelBits.h"

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace deckutil {

namespace {

namespace portable {
#define VECTOR_TARGET
#define VECTOR_LANES 2
#include "VectorType.inl"

#include "VectorSelection.inl"

#include "LevelBits.inl"
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace portable

#if defined(__x86_64__)
namespace avx2 {
#define VECTOR_TARGET __attribute__((target("avx2")))
#define VECTOR_LANES 4
#include "VectorType.inl"

#include "VectorSelection.inl"

#include "LevelBits.inl"
}  // namespace avx2
#endif

}  // namespace

LevelComparison levelComparison(dspwavedecks::InstructionSet set) {
#if defined(__x86_64__)
    if (set == dspwavedecks::InstructionSet::avx2) {
        return avx2::compareWithLevel;
    }
#endif
    static_cast<void>(set);
    return portable::compareWithLevel;
}

LevelComparison levelComparison() {
    using dspwavedecks::InstructionSet;
    static const LevelComparison best =
        levelComparison(isSupported(InstructionSet::avx2) ? InstructionSet::avx2 : InstructionSet::portable);
    return best;
}

}  // namespace deckutil
