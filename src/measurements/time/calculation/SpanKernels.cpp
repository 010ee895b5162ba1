#include "SpanKernels.h"

#include <algorithm>
#include <bit>
#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace dspwavedecks {

namespace {

namespace portable {
#define VECTOR_TARGET
#define VECTOR_LANES 2
#include "VectorType.inl"

#include "VectorSelection.inl"

#include "SpanKernels.inl"
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace portable

#if defined(__x86_64__)
namespace avx2 {
#define VECTOR_TARGET __attribute__((target("avx2")))
#define VECTOR_LANES 4
#include "VectorType.inl"

#include "VectorSelection.inl"

#include "SpanKernels.inl"
}  // namespace avx2
#endif

}  // namespace

const SpanKernels& spanKernels(InstructionSet set) {
#if defined(__x86_64__)
    if (set == InstructionSet::avx2) {
        return avx2::table;
    }
#endif
    static_cast<void>(set);
    return portable::table;
}

const SpanKernels& spanKernels() {
    static const SpanKernels& best =
        spanKernels(isSupported(InstructionSet::avx2) ? InstructionSet::avx2 : InstructionSet::portable);
    return best;
}

}  // namespace dspwavedecks
