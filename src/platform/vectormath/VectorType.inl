// A vector of doubles and what kernels do with it, for one instruction set. Included inside a namespace that is the
// including source's own, after these macros are defined:
//   VECTOR_TARGET  attributes of a function for that instruction set
//   VECTOR_LANES   doubles in a vector: 2, 4 or 8
//   VECTOR_FUSED   defined if `multiplyAdd` rounds once
// Functions that take or return vectors are always inlined, so that no calling convention for them is ever needed.

#define VECTOR_INLINE VECTOR_TARGET static inline __attribute__((always_inline, unused))

constexpr std::size_t lanes = VECTOR_LANES;
typedef double Doubles __attribute__((vector_size(VECTOR_LANES * sizeof(double))));
typedef std::int64_t Integers __attribute__((vector_size(VECTOR_LANES * sizeof(double))));
typedef std::uint64_t Naturals __attribute__((vector_size(VECTOR_LANES * sizeof(double))));  // shifts in one step

VECTOR_INLINE Doubles load(const double* source) {
    Doubles vector;
    __builtin_memcpy(&vector, source, sizeof vector);
    return vector;
}

VECTOR_INLINE void store(double* destination, Doubles vector) {
    __builtin_memcpy(destination, &vector, sizeof vector);
}

/// a * b + c
VECTOR_INLINE Doubles multiplyAdd(Doubles a, Doubles b, Doubles c) {
#if VECTOR_LANES == 8
    return (Doubles)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)c);
#elif defined(VECTOR_FUSED)
    return (Doubles)_mm256_fmadd_pd((__m256d)a, (__m256d)b, (__m256d)c);
#else
    return a * b + c;
#endif
}

/// The two vectors of a[0] b[0] a[1] b[1] ...
VECTOR_INLINE void interleave(Doubles a, Doubles b, Doubles& low, Doubles& high) {
#if VECTOR_LANES == 2
    low = __builtin_shufflevector(a, b, 0, 2);
    high = __builtin_shufflevector(a, b, 1, 3);
#elif VECTOR_LANES == 8
    low = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
    high = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
#else
    low = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
#endif
}

/// The other way round: a[0] a[2] ... b[0] b[2] ... and a[1] a[3] ... b[1] b[3] ...
VECTOR_INLINE void separate(Doubles a, Doubles b, Doubles& evens, Doubles& odds) {
#if VECTOR_LANES == 2
    evens = __builtin_shufflevector(a, b, 0, 2);
    odds = __builtin_shufflevector(a, b, 1, 3);
#elif VECTOR_LANES == 8
    evens = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
    odds = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
#else
    evens = __builtin_shufflevector(a, b, 0, 2, 4, 6);
    odds = __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}
