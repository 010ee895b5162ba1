// Kernels for AVX-512.

#if defined(__x86_64__)

#include "VectorKernels.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET __attribute__((target("avx512f")))
#define VECTOR_LANES 8
#define VECTOR_FUSED

namespace dspwavedecks::vectormath {

namespace {

#include "VectorType.inl"

#include "VectorSelection.inl"

#include "VectorKernels.inl"

}  // namespace

const VectorKernels avx512Kernels = table;

}  // namespace dspwavedecks::vectormath

#endif
