// Passes over a span for one instruction set; included behind VectorType.inl.

VECTOR_INLINE double leastOf(Doubles vector) {
#if VECTOR_LANES == 4
    vector = lesser(__builtin_shufflevector(vector, vector, 2, 3, 0, 1), vector);
#endif
    return vector[1] < vector[0] ? vector[1] : vector[0];
}

VECTOR_INLINE double greatestOf(Doubles vector) {
#if VECTOR_LANES == 4
    vector = greater(__builtin_shufflevector(vector, vector, 2, 3, 0, 1), vector);
#endif
    return vector[1] > vector[0] ? vector[1] : vector[0];
}

/// Whether a lane holds a NaN in one of two vectors.
VECTOR_INLINE Integers isUnordered(Doubles a, Doubles b) {
#if VECTOR_LANES == 4
    return (Integers)_mm256_cmp_pd((__m256d)a, (__m256d)b, _CMP_UNORD_Q);
#elif defined(__SSE2__)
    return (Integers)_mm_cmpunord_pd((__m128d)a, (__m128d)b);
#else
    return (a != a) | (b != b);
#endif
}

// Two accumulators each: the latency of a comparison is that of several loads.
VECTOR_TARGET static ScannedExtremes scanExtremes(const double* x, std::size_t n) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Doubles low[2] = {infinity - Doubles{}, infinity - Doubles{}};
    Doubles high[2] = {-infinity - Doubles{}, -infinity - Doubles{}};
    Integers unordered[2] = {};
    std::size_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        for (std::size_t part = 0; part < 2; ++part) {
            const Doubles first = load(x + i + 2 * part * lanes);
            const Doubles second = load(x + i + (2 * part + 1) * lanes);
            low[part] = lesser(second, lesser(first, low[part]));
            high[part] = greater(second, greater(first, high[part]));
            unordered[part] |= isUnordered(first, second);
        }
    }
    if (n >= lanes) {  // the last vectors may overlap those before: extremes don't mind
        for (std::size_t part = 0; part < 4; ++part) {
            const Doubles value = load(x + std::min(i + part * lanes, n - lanes));
            low[part % 2] = lesser(value, low[part % 2]);
            high[part % 2] = greater(value, high[part % 2]);
            unordered[part % 2] |= isUnordered(value, value);
        }
        i = n;
    }
    const double lowest = leastOf(lesser(low[0], low[1]));
    const double highest = greatestOf(greater(high[0], high[1]));
    ScannedExtremes extremes{lowest, highest, any(unordered[0] | unordered[1])};
    for (; i < n; ++i) {
        extremes.minimum = x[i] < extremes.minimum ? x[i] : extremes.minimum;
        extremes.maximum = x[i] > extremes.maximum ? x[i] : extremes.maximum;
        extremes.hasNaN = extremes.hasNaN || x[i] != x[i];
    }
    return extremes;
}

/// Ones behind as many zeros: from place edgeSamples - n on the lanes behind n samples.
alignas(64) constexpr auto lanesBehind = [] {
    std::array<std::int64_t, 2 * edgeSamples> marks{};
    std::fill(marks.begin() + edgeSamples, marks.end(), -1);
    return marks;
}();

/// Scans n of `readable` samples: those behind are taken for NaN, which extremes pass over.
template <std::size_t readable>
VECTOR_INLINE ScannedExtremes scanSome(const double* x, std::size_t n) {
    Doubles low = std::numeric_limits<double>::infinity() - Doubles{};
    Doubles high = -low;
    Integers unordered = {};
    for (std::size_t i = 0; i < readable; i += lanes) {
        Integers behind;
        __builtin_memcpy(&behind, lanesBehind.data() + (edgeSamples - n + i), sizeof behind);
        const Doubles value = (Doubles)((Integers)load(x + i) | behind);
        low = lesser(value, low);
        high = greater(value, high);
        unordered |= (value != value) ^ behind;
    }
    return {leastOf(low), greatestOf(high), any(unordered)};
}

VECTOR_TARGET static ScannedExtremes scanFew(const double* x, std::size_t n) {
    return n <= edgeSamples / 2 ? scanSome<edgeSamples / 2>(x, n) : scanSome<edgeSamples>(x, n);
}

VECTOR_TARGET static bool neverFalls(const double* x, std::size_t n) {
    constexpr std::size_t parts = 4;
    Integers ordered[2] = {~Integers{}, ~Integers{}};
    std::size_t i = 0;
    for (; i + parts * lanes < n; i += parts * lanes) {
        for (std::size_t part = 0; part < parts; ++part) {
            const double* here = x + i + part * lanes;
            ordered[part % 2] &= load(here) <= load(here + 1);
        }
    }
    bool rises = !any(~(ordered[0] & ordered[1]));
    for (; i + 1 < n; ++i) {
        rises = rises && x[i] <= x[i + 1];
    }
    return rises;
}

VECTOR_TARGET static std::size_t findAbove(const double* x, std::size_t n, double bound) {
    const Doubles bounds = bound - Doubles{};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        const Integers first = load(x + i) > bounds;
        const Integers second = load(x + i + lanes) > bounds;
        if (any(first | second)) {
            return i + static_cast<std::size_t>(std::countr_zero(bitsOf(first) | bitsOf(second) << lanes));
        }
    }
    while (i < n && !(x[i] > bound)) {
        ++i;
    }
    return i;
}

VECTOR_TARGET static std::size_t findBelow(const double* x, std::size_t n, double bound) {
    const Doubles bounds = bound - Doubles{};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        const Integers first = load(x + i) < bounds;
        const Integers second = load(x + i + lanes) < bounds;
        if (any(first | second)) {
            return i + static_cast<std::size_t>(std::countr_zero(bitsOf(first) | bitsOf(second) << lanes));
        }
    }
    while (i < n && !(x[i] < bound)) {
        ++i;
    }
    return i;
}

VECTOR_INLINE void compareHalfEdge(const double* x, const EdgeLevels& levels, std::size_t begin, EdgeBits& bits) {
    for (std::size_t i = begin; i < begin + edgeSamples / 2; i += lanes) {
        const Doubles value = load(x + i) * levels.sign;
        bits.inState |= bitsOf(value < levels.state) << i;
        bits.beforeStart |= bitsOf(value < levels.start) << i;
        bits.notPastMid |= bitsOf(value <= levels.mid) << i;
        bits.pastMid |= bitsOf(value > levels.mid) << i;
        bits.pastEnd |= bitsOf(value > levels.end) << i;
    }
}

VECTOR_TARGET static EdgeBits compareEdge(const double* x, const EdgeLevels& levels) {
    EdgeBits bits{};
    compareHalfEdge(x, levels, edgeSamples / 2, bits);
    if (bits.inState == 0) {
        compareHalfEdge(x, levels, 0, bits);
    }
    return bits;
}

/// Doubles from here on have no fraction: adding it rounds, and leaves a small whole number in the low bits.
constexpr double wholeNumbers = 0x1p52;

VECTOR_INLINE Integers binsOf(Doubles x, Doubles minimum, Doubles divisor) {
    const Doubles largest = std::numeric_limits<double>::max() - Doubles{};
    const Doubles binCount = static_cast<double>(histogramBinCount) - Doubles{};
    const Doubles one = 1.0 - Doubles{};
    const Doubles quotient = (x - minimum) * binCount / divisor;
    const Doubles small = select(quotient < binCount, quotient, binCount);
    const Doubles rounded = (small + wholeNumbers) - wholeNumbers;
    const Doubles position = rounded - (Doubles)((rounded >= small) & (Integers)one);  // ceil(small) - 1, at most 99
    const Integers isPositive = (quotient > Doubles{}) & (quotient <= largest);
    return (Integers)(position + wholeNumbers) & isPositive & 127;
}

VECTOR_TARGET static void findHistogramBins(const double* x, std::size_t n, double minimum, double divisor,
                                            std::uint64_t* bins) {
    const Doubles allMinimum = minimum - Doubles{};
    const Doubles allDivisor = divisor - Doubles{};
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Integers found = binsOf(load(x + i), allMinimum, allDivisor);
        __builtin_memcpy(bins + i, &found, sizeof found);
    }
    if (i < n) {
        const Integers found = binsOf(loadSome(x + i, n - i, 0.0), allMinimum, allDivisor);
        __builtin_memcpy(bins + i, &found, (n - i) * sizeof(std::uint64_t));
    }
}

VECTOR_TARGET static void findHistogramBinsInRange(const double* x, std::size_t n, double minimum, double divisor,
                                                   std::uint64_t* bins) {
    const double binsPerUnit = static_cast<double>(histogramBinCount) / divisor;
    // The bins at both ends reach as far as values do, so that a value may be taken for one half inside them.
    const Doubles first = 0.5 - Doubles{};
    const Doubles last = static_cast<double>(histogramBinCount) - 0.5 - Doubles{};
    // What is left of one half is small where rounding decides: 100 is known to three roundings of 1.4e-14 each.
    const Doubles middle = 0.5 - 1e-12 - Doubles{};
    const Doubles shift = wholeNumbers - 0.5 - Doubles{};
    const Integers signs = (Integers)(-Doubles{});
    const Doubles allMinimum = minimum - Doubles{};
    const Doubles scale = binsPerUnit - Doubles{};
    constexpr std::size_t parts = 4;
    std::size_t i = 0;
    for (; i + parts * lanes <= n; i += parts * lanes) {
        Integers isNearBorder = {};
        for (std::size_t part = 0; part < parts; ++part) {
            const Doubles value = load(x + i + part * lanes);
            const Doubles position = lesser(greater((value - allMinimum) * scale, first), last);
            const Doubles rounded = position + shift;  // the bin in the low bits, as 1/2 is taken off
            const Doubles fromMiddle = position - (rounded - shift);
            isNearBorder |= (Doubles)((Integers)fromMiddle & ~signs) > middle;
            const Integers found = (Integers)rounded & 127;
            __builtin_memcpy(bins + i + part * lanes, &found, sizeof found);
        }
        if (any(isNearBorder)) {
            findHistogramBins(x + i, parts * lanes, minimum, divisor, bins + i);
        }
    }
    findHistogramBins(x + i, n - i, minimum, divisor, bins + i);
}

constexpr SpanKernels table{scanExtremes, scanFew,     neverFalls,        findAbove,
                            findBelow,    compareEdge, findHistogramBins, findHistogramBinsInRange};
