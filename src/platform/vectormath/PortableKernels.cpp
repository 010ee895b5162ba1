// Kernels for what every machine of the architecture has.

#include "VectorKernels.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET
#define VECTOR_LANES 2

namespace dspwavedecks::vectormath {

namespace {

#include "VectorType.inl"

#include "VectorSelection.inl"

#include "VectorKernels.inl"

}  // namespace

const VectorKernels portableKernels = table;

}  // namespace dspwavedecks::vectormath
