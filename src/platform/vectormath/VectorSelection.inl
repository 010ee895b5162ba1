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
