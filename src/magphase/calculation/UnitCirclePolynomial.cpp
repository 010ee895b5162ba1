#include "UnitCirclePolynomial.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "InstructionSet.h"

namespace dspwavedecks {

namespace {

/// What every machine has: two lanes, multiplication and addition rounded apart.
namespace portable {
#define VECTOR_TARGET
#define VECTOR_LANES 2
#include "VectorType.inl"

#include "HornerKernel.inl"
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace portable

#if defined(__x86_64__)
#define VECTOR_FUSED

namespace avx2 {
#define VECTOR_TARGET __attribute__((target("avx2,fma")))
#define VECTOR_LANES 4
#include "VectorType.inl"

#include "HornerKernel.inl"
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace avx2

namespace avx512 {
#define VECTOR_TARGET __attribute__((target("avx512f")))
#define VECTOR_LANES 8
#include "VectorType.inl"

#include "HornerKernel.inl"
#undef VECTOR_TARGET
#undef VECTOR_LANES
}  // namespace avx512
#endif

}  // namespace

std::vector<UnitCircleKernel> supportedUnitCircleKernels() {
    std::vector<UnitCircleKernel> kernels{{"portable", portable::evaluate}};
#if defined(__x86_64__)
    if (isSupported(InstructionSet::avx2)) {
        kernels.push_back({"avx2", avx2::evaluate});
    }
    if (isSupported(InstructionSet::avx512)) {
        kernels.push_back({"avx512", avx512::evaluate});
    }
#endif
    return kernels;
}

void evaluateOnUnitCircle(const double* c, std::size_t count, const double* zReal, const double* zImag,
                          std::size_t points, double* real, double* imag) {
    static const UnitCircleKernel widest = supportedUnitCircleKernels().back();
    widest.evaluate(c, count, zReal, zImag, points, real, imag);
}

}  // namespace dspwavedecks
