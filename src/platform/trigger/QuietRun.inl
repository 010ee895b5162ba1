// The quiet run for one instruction set; included behind VectorType.inl and VectorSelection.inl.

VECTOR_INLINE bool areAll(Integers mask) {
    return bitsOf(mask) == (1u << lanes) - 1;
}

VECTOR_TARGET static std::size_t countQuiet(const double* times, const double* values, std::size_t n,
                                            double previousTime, const QuietBounds& bounds, ValueRange& range) {
    const auto isQuiet = [&](double time, double value, double before) {
        return time >= before && value > bounds.low && value < bounds.high && time < bounds.until;
    };
    if (n == 0 || !isQuiet(times[0], values[0], previousTime)) {
        return 0;
    }
    double least = values[0] < range.low ? values[0] : range.low;
    double greatest = values[0] > range.high ? values[0] : range.high;
    std::size_t i = 1;
    if (n > 2 * lanes) {
        const Doubles low = bounds.low - Doubles{};
        const Doubles high = bounds.high - Doubles{};
        const Doubles until = bounds.until - Doubles{};
        Doubles lows = least - Doubles{};
        Doubles highs = greatest - Doubles{};
        constexpr std::size_t stride = 4 * lanes;
        // Times that don't fall all stay below a bound if the last one does.
        for (; i + stride <= n && times[i + stride - 1] < bounds.until; i += stride) {
            Doubles strideLows = lows;
            Doubles strideHighs = highs;
            Integers inside = ~Integers{};
            for (std::size_t k = i; k < i + stride; k += lanes) {
                const Doubles value = load(values + k);
                inside &= (load(times + k) >= load(times + k - 1)) & (value > low) & (value < high);
                strideLows = lesser(value, strideLows);
                strideHighs = greater(value, strideHighs);
            }
            if (!areAll(inside)) {
                break;
            }
            lows = strideLows;
            highs = strideHighs;
        }
        for (; i + lanes <= n; i += lanes) {
            const Doubles time = load(times + i);
            const Doubles value = load(values + i);
            if (!areAll((time >= load(times + i - 1)) & (value > low) & (value < high) & (time < until))) {
                break;
            }
            lows = lesser(value, lows);
            highs = greater(value, highs);
        }
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            least = lows[lane] < least ? lows[lane] : least;
            greatest = highs[lane] > greatest ? highs[lane] : greatest;
        }
    }
    for (; i < n && isQuiet(times[i], values[i], times[i - 1]); ++i) {
        least = values[i] < least ? values[i] : least;
        greatest = values[i] > greatest ? values[i] : greatest;
    }
    range = {least, greatest};
    return i;
}
