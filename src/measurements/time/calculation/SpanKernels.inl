// Passes over a span for one instruction set; included behind VectorType.inl.

VECTOR_INLINE double leastOf(Doubles vector) {
    double least = vector[0];
    for (std::size_t lane = 1; lane < lanes; ++lane) {
        least = vector[lane] < least ? vector[lane] : least;
    }
    return least;
}

// Two accumulators each: the latency of a comparison is that of several loads.
VECTOR_TARGET static ScannedExtremes scanExtremes(const double* x, std::size_t n) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Doubles low[2] = {infinity - Doubles{}, infinity - Doubles{}};
    Doubles high[2] = {-infinity - Doubles{}, -infinity - Doubles{}};
    Integers unordered[2] = {};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        for (std::size_t part = 0; part < 2; ++part) {
            const Doubles value = load(x + i + part * lanes);
            low[part] = select(value < low[part], value, low[part]);
            high[part] = select(value > high[part], value, high[part]);
            unordered[part] |= value != value;
        }
    }
    const double lowest = leastOf(select(low[0] < low[1], low[0], low[1]));
    const double highest = -leastOf(-select(high[0] > high[1], high[0], high[1]));
    ScannedExtremes extremes{lowest, highest, any(unordered[0] | unordered[1])};
    for (; i < n; ++i) {
        extremes.minimum = x[i] < extremes.minimum ? x[i] : extremes.minimum;
        extremes.maximum = x[i] > extremes.maximum ? x[i] : extremes.maximum;
        extremes.hasNaN = extremes.hasNaN || x[i] != x[i];
    }
    return extremes;
}

VECTOR_TARGET static bool neverFalls(const double* x, std::size_t n) {
    Integers falls[2] = {};
    std::size_t i = 0;
    for (; i + 2 * lanes < n; i += 2 * lanes) {
        for (std::size_t part = 0; part < 2; ++part) {
            const double* here = x + i + part * lanes;
            falls[part] |= ~(load(here) <= load(here + 1));
        }
    }
    bool rises = !any(falls[0] | falls[1]);
    for (; i + 1 < n; ++i) {
        rises = rises && x[i] <= x[i + 1];
    }
    return rises;
}

VECTOR_TARGET static std::size_t findAbove(const double* x, std::size_t n, double bound) {
    const Doubles bounds = bound - Doubles{};
    std::size_t i = 0;
    while (i + 2 * lanes <= n && !any((load(x + i) > bounds) | (load(x + i + lanes) > bounds))) {
        i += 2 * lanes;
    }
    while (i < n && !(x[i] > bound)) {
        ++i;
    }
    return i;
}

VECTOR_TARGET static std::size_t findBelow(const double* x, std::size_t n, double bound) {
    const Doubles bounds = bound - Doubles{};
    std::size_t i = 0;
    while (i + 2 * lanes <= n && !any((load(x + i) < bounds) | (load(x + i + lanes) < bounds))) {
        i += 2 * lanes;
    }
    while (i < n && !(x[i] < bound)) {
        ++i;
    }
    return i;
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

VECTOR_TARGET static bool guessHistogramBins(const double* x, std::size_t n, double minimum, double binsPerUnit,
                                             std::uint64_t* bins) {
    // The bins at both ends reach as far as values do, so that a value may be taken for one half inside them.
    const Doubles first = 0.5 - Doubles{};
    const Doubles last = static_cast<double>(histogramBinCount) - 0.5 - Doubles{};
    const Doubles margin = 1e-12 - Doubles{};  // 100 is known to three roundings of 1.4e-14 each
    Integers isUnsure = {};
    for (std::size_t i = 0; i + lanes <= n; i += lanes) {
        const Doubles product = (load(x + i) - minimum) * binsPerUnit;
        const Doubles atLeast = select(product > first, product, first);
        const Doubles position = select(atLeast < last, atLeast, last);
        const Doubles rounded = position + wholeNumbers;
        const Doubles above = position - (rounded - wholeNumbers);
        isUnsure |= (above < margin) & (above > -margin);
        const Integers found = ((Integers)rounded + (above < Doubles{})) & 127;
        __builtin_memcpy(bins + i, &found, sizeof found);
    }
    return !any(isUnsure);
}

constexpr SpanKernels table{scanExtremes, neverFalls, findAbove, findBelow, findHistogramBins, guessHistogramBins};
