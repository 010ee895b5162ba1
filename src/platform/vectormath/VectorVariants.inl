// The kernels of a file once for each instruction set that they are chosen between at run time: in the namespaces
// `portable` and `avx2`, which are one where there is no AVX2. VECTOR_KERNELS names the file, in quotes; included inside
// a namespace that is the including source's own.

namespace portable {
#define VECTOR_TARGET
#define VECTOR_LANES 2
#include "VectorType.inl"

#include "VectorSelection.inl"

#include VECTOR_KERNELS
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace portable

#if defined(__x86_64__)
namespace avx2 {
#define VECTOR_TARGET __attribute__((target("avx2")))
#define VECTOR_LANES 4
#include "VectorType.inl"

#include "VectorSelection.inl"

#include VECTOR_KERNELS
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace avx2
#else
namespace avx2 = portable;
#endif
