#include "SpanKernels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace dspwavedecks {

namespace {

#define VECTOR_KERNELS "SpanKernels.inl"
#include "VectorVariants.inl"

}  // namespace

const SpanKernels& spanKernels(InstructionSet set) {
    return set == InstructionSet::avx2 ? avx2::table : portable::table;
}

const SpanKernels& spanKernels() {
    static const SpanKernels& best = spanKernels(avx2OrPortable());
    return best;
}

}  // namespace dspwavedecks
