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
            low[part] = lesser(value, low[part]);
            high[part] = greater(value, high[part]);
            unordered[part] |= value != value;
        }
    }
    if (n >= lanes) {  // the last vectors may overlap those before: extremes don't mind
        for (const std::size_t last : {std::min(i, n - lanes), n - lanes}) {
            const Doubles value = load(x + last);
            low[0] = lesser(value, low[0]);
            high[0] = greater(value, high[0]);
            unordered[0] |= value != value;
        }
        i = n;
    }
    const double lowest = leastOf(lesser(low[0], low[1]));
    const double highest = -leastOf(-greater(high[0], high[1]));
    ScannedExtremes extremes{lowest, highest, any(unordered[0] | unordered[1])};
    for (; i < n; ++i) {
        extremes.minimum = x[i] < extremes.minimum ? x[i] : extremes.minimum;
        extremes.maximum = x[i] > extremes.maximum ? x[i] : extremes.maximum;
        extremes.hasNaN = extremes.hasNaN || x[i] != x[i];
    }
    return extremes;
}

VECTOR_TARGET static ScannedExtremes scanFew(const double* x, std::size_t n) {
    const Doubles infinity = std::numeric_limits<double>::infinity() - Doubles{};
    Doubles low = infinity;
    Doubles high = -infinity;
    Integers unordered = {};
    Integers number = {};
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        number[lane] = static_cast<std::int64_t>(lane);
    }
    for (std::size_t i = 0; i < edgeSamples; i += lanes) {
        const Integers isMeant = number < static_cast<std::int64_t>(n - i) - Integers{};
        const Doubles value = load(x + i);
        low = lesser(select(isMeant, value, infinity), low);
        high = greater(select(isMeant, value, -infinity), high);
        unordered |= isMeant & (value != value);
    }
    return {leastOf(low), -leastOf(-high), any(unordered)};
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

VECTOR_TARGET static EdgeBits compareEdge(const double* x, double mid, double start, double end) {
    EdgeBits bits{};
    for (std::size_t i = 0; i < edgeSamples; i += lanes) {
        const Doubles value = load(x + i);
        bits.isOrdered |= bitsOf(value == value) << i;
        bits.belowMid |= bitsOf(value < mid) << i;
        bits.aboveMid |= bitsOf(value > mid) << i;
        bits.belowStart |= bitsOf(value < start) << i;
        bits.belowEnd |= bitsOf(value < end) << i;
        bits.aboveEnd |= bitsOf(value > end) << i;
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
    const Doubles margin = 1e-12 - Doubles{};  // 100 is known to three roundings of 1.4e-14 each
    const Doubles allMinimum = minimum - Doubles{};
    const Doubles allDivisor = divisor - Doubles{};
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Doubles value = load(x + i);
        const Doubles position = lesser(greater((value - minimum) * binsPerUnit, first), last);
        const Doubles rounded = position + wholeNumbers;
        const Doubles above = position - (rounded - wholeNumbers);
        Integers found = ((Integers)rounded + (above < Doubles{})) & 127;
        if (any((above < margin) & (above > -margin))) {  // so near to a border that rounding decides
            found = binsOf(value, allMinimum, allDivisor);
        }
        __builtin_memcpy(bins + i, &found, sizeof found);
    }
    findHistogramBins(x + i, n - i, minimum, divisor, bins + i);
}

constexpr SpanKernels table{scanExtremes, scanFew,     neverFalls,        findAbove,
                            findBelow,    compareEdge, findHistogramBins, findHistogramBinsInRange};
