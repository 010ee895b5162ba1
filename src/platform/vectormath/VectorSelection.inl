// Choices between lanes and parts of vectors, for any number of lanes. Included behind VectorType.inl.

/// The first `n` doubles of a vector, the others `filler`.
VECTOR_INLINE Doubles loadSome(const double* source, std::size_t n, double filler) {
    Doubles vector = filler - Doubles{};
    __builtin_memcpy(&vector, source, n * sizeof(double));
    return vector;
}

VECTOR_INLINE void storeSome(double* destination, std::size_t n, Doubles vector) {
    __builtin_memcpy(destination, &vector, n * sizeof(double));
}

VECTOR_INLINE Doubles select(Integers mask, Doubles yes, Doubles no) {
    return (Doubles)((mask & (Integers)yes) | (~mask & (Integers)no));
}

/// a < b ? a : b in each lane, and b where one of them is NaN.
VECTOR_INLINE Doubles lesser(Doubles a, Doubles b) {
#if VECTOR_LANES == 8
    return (Doubles)_mm512_min_pd((__m512d)a, (__m512d)b);
#elif VECTOR_LANES == 4
    return (Doubles)_mm256_min_pd((__m256d)a, (__m256d)b);
#elif defined(__SSE2__)
    return (Doubles)_mm_min_pd((__m128d)a, (__m128d)b);
#else
    return select(a < b, a, b);
#endif
}

/// a > b ? a : b in each lane, and b where one of them is NaN.
VECTOR_INLINE Doubles greater(Doubles a, Doubles b) {
#if VECTOR_LANES == 8
    return (Doubles)_mm512_max_pd((__m512d)a, (__m512d)b);
#elif VECTOR_LANES == 4
    return (Doubles)_mm256_max_pd((__m256d)a, (__m256d)b);
#elif defined(__SSE2__)
    return (Doubles)_mm_max_pd((__m128d)a, (__m128d)b);
#else
    return select(a > b, a, b);
#endif
}

VECTOR_INLINE bool any(Integers mask) {
#if VECTOR_LANES == 8
    return _mm512_test_epi64_mask((__m512i)mask, (__m512i)mask) != 0;
#elif VECTOR_LANES == 4
    return _mm256_movemask_pd((__m256d)mask) != 0;
#elif defined(__SSE2__)
    return _mm_movemask_pd((__m128d)mask) != 0;
#else
    return (mask[0] | mask[1]) != 0;
#endif
}

/// The lanes of a mask as bits, lane 0 lowest.
VECTOR_INLINE std::uint64_t bitsOf(Integers mask) {
#if VECTOR_LANES == 8
    return _mm512_test_epi64_mask((__m512i)mask, (__m512i)mask);
#elif VECTOR_LANES == 4
    return static_cast<std::uint64_t>(_mm256_movemask_pd((__m256d)mask));
#elif defined(__SSE2__)
    return static_cast<std::uint64_t>(_mm_movemask_pd((__m128d)mask));
#else
    return static_cast<std::uint64_t>((mask[0] & 1) | (mask[1] & 2));
#endif
}
