// Kernels for AVX2 with fused multiply-add.

#if defined(__x86_64__)

#include "VectorKernels.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET __attribute__((target("avx2,fma")))
#define VECTOR_LANES 4
#define VECTOR_FUSED

namespace dspwavedecks::vectormath {

namespace {

#include "VectorType.inl"

#include "VectorSelection.inl"

#include "VectorKernels.inl"

}  // namespace

const VectorKernels avx2Kernels = table;

}  // namespace dspwavedecks::vectormath

#endif
