// The kernel for AVX2 with fused multiply-add.

#if defined(__x86_64__)

#include "GroupKernels.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET __attribute__((target("avx2,fma")))
#define VECTOR_LANES 4
#define VECTOR_FUSED

namespace dspwavedecks::polyphase {

namespace {

#include "VectorType.inl"

#include "GroupKernel.inl"

}  // namespace

void filterGroupAvx2(const Group& group) {
    filterGroup(group);
}

}  // namespace dspwavedecks::polyphase

#endif
