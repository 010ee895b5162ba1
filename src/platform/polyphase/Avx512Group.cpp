// The kernel for AVX-512.

#if defined(__x86_64__)

#include "GroupKernels.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET __attribute__((target("avx512f")))
#define VECTOR_LANES 8
#define VECTOR_FUSED

namespace dspwavedecks::polyphase {

namespace {

#include "VectorType.inl"

#include "GroupKernel.inl"

}  // namespace

void filterGroupAvx512(const Group& group) {
    filterGroup(group);
}

}  // namespace dspwavedecks::polyphase

#endif
