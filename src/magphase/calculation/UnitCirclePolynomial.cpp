#include "UnitCirclePolynomial.h"

#include <cstddef>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace dspwavedecks {

namespace {

/// What every machine has: two lanes, multiplication and addition rounded apart.
namespace portable {

#define KERNEL_TARGET
constexpr std::size_t lanes = 2;
typedef double Vector __attribute__((vector_size(lanes * sizeof(double))));

inline Vector load(const double* source) {
    return Vector{source[0], source[1]};
}
inline void store(double* destination, Vector value) {
    destination[0] = value[0];
    destination[1] = value[1];
}
inline Vector broadcast(double value) {
    return Vector{value, value};
}
inline Vector multiplyAdd(Vector a, Vector b, Vector c) {
    return a * b + c;
}
inline Vector multiplySubtract(Vector a, Vector b, Vector c) {
    return a * b - c;
}

#include "HornerKernel.inl"
#undef KERNEL_TARGET

}  // namespace portable

#if defined(__x86_64__)

namespace avx2 {

#define KERNEL_TARGET __attribute__((target("avx2,fma")))
#define KERNEL_INLINE KERNEL_TARGET inline __attribute__((always_inline))
constexpr std::size_t lanes = 4;
using Vector = __m256d;

KERNEL_INLINE Vector load(const double* source) {
    return _mm256_loadu_pd(source);
}
KERNEL_INLINE void store(double* destination, Vector value) {
    _mm256_storeu_pd(destination, value);
}
KERNEL_INLINE Vector broadcast(double value) {
    return _mm256_set1_pd(value);
}
KERNEL_INLINE Vector multiplyAdd(Vector a, Vector b, Vector c) {
    return _mm256_fmadd_pd(a, b, c);
}
KERNEL_INLINE Vector multiplySubtract(Vector a, Vector b, Vector c) {
    return _mm256_fmsub_pd(a, b, c);
}

#include "HornerKernel.inl"
#undef KERNEL_INLINE
#undef KERNEL_TARGET

}  // namespace avx2

namespace avx512 {

#define KERNEL_TARGET __attribute__((target("avx512f")))
#define KERNEL_INLINE KERNEL_TARGET inline __attribute__((always_inline))
constexpr std::size_t lanes = 8;
using Vector = __m512d;

KERNEL_INLINE Vector load(const double* source) {
    return _mm512_loadu_pd(source);
}
KERNEL_INLINE void store(double* destination, Vector value) {
    _mm512_storeu_pd(destination, value);
}
KERNEL_INLINE Vector broadcast(double value) {
    return _mm512_set1_pd(value);
}
KERNEL_INLINE Vector multiplyAdd(Vector a, Vector b, Vector c) {
    return _mm512_fmadd_pd(a, b, c);
}
KERNEL_INLINE Vector multiplySubtract(Vector a, Vector b, Vector c) {
    return _mm512_fmsub_pd(a, b, c);
}

#include "HornerKernel.inl"
#undef KERNEL_INLINE
#undef KERNEL_TARGET

}  // namespace avx512

#endif

}  // namespace

std::vector<UnitCircleKernel> supportedUnitCircleKernels() {
    std::vector<UnitCircleKernel> kernels{{"portable", portable::evaluate}};
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        kernels.push_back({"avx2", avx2::evaluate});
    }
    if (__builtin_cpu_supports("avx512f")) {
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
