// Passes over the bins of a spectrum for one instruction set; included behind VectorType.inl and VectorSelection.inl.

/// Bins that are compared before it is asked whether one failed.
constexpr std::size_t comparedAtOnce = 512;

VECTOR_INLINE std::int64_t sumOf(Integers vector) {
    std::int64_t values[lanes];
    __builtin_memcpy(values, &vector, sizeof vector);
    std::int64_t sum = 0;
    for (const std::int64_t value : values) {
        sum += value;
    }
    return sum;
}

// Two accumulators throughout, so that no step waits for the one before.

template <bool isUpper>
VECTOR_TARGET static bool anyOutside(const double* bins, const double* line, double reference, std::size_t n) {
    const Doubles references = reference - Doubles{};
    std::size_t k = 0;
    while (k + 2 * lanes <= n) {
        const std::size_t stop = k + comparedAtOnce < n ? k + comparedAtOnce : n;
        Integers failing[2] = {};
        for (; k + 2 * lanes <= stop; k += 2 * lanes) {
            for (std::size_t part = 0; part < 2; ++part) {
                const Doubles bin = load(bins + k + part * lanes);
                const Doubles limit = references + load(line + k + part * lanes);
                failing[part] |= isUpper ? bin > limit : bin < limit;
            }
        }
        if (any(failing[0] | failing[1])) {
            return true;
        }
    }
    for (; k < n; ++k) {
        const double limit = reference + line[k];
        if (isUpper ? bins[k] > limit : bins[k] < limit) {
            return true;
        }
    }
    return false;
}

// A comparison yields -1 in a lane where it holds, which subtracts into a count.
VECTOR_TARGET static std::size_t countAtMost(const double* x, std::size_t n, double bound) {
    const Doubles bounds = bound - Doubles{};
    Integers counts[2] = {};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        counts[0] -= load(x + i) <= bounds;
        counts[1] -= load(x + i + lanes) <= bounds;
    }
    auto count = static_cast<std::size_t>(sumOf(counts[0] + counts[1]));
    for (; i < n; ++i) {
        count += x[i] <= bound ? 1 : 0;
    }
    return count;
}

VECTOR_TARGET static double largestAbove(const double* x, std::size_t n, double bound) {
    Doubles largest[2] = {bound - Doubles{}, bound - Doubles{}};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        for (std::size_t part = 0; part < 2; ++part) {
            const Doubles value = load(x + i + part * lanes);
            largest[part] = select(value > largest[part], value, largest[part]);
        }
    }
    double values[2 * lanes];
    __builtin_memcpy(values, largest, sizeof values);
    double result = bound;
    for (const double value : values) {
        result = value > result ? value : result;
    }
    for (; i < n; ++i) {
        result = x[i] > result ? x[i] : result;
    }
    return result;
}

VECTOR_TARGET static double smallestAbove(const double* x, std::size_t n, double bound) {
    const double infinity = std::numeric_limits<double>::infinity();
    const Doubles bounds = bound - Doubles{};
    Doubles smallest[2] = {infinity - Doubles{}, infinity - Doubles{}};
    std::size_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        for (std::size_t part = 0; part < 2; ++part) {
            const Doubles value = load(x + i + part * lanes);
            smallest[part] = select((value > bounds) & (value < smallest[part]), value, smallest[part]);
        }
    }
    double values[2 * lanes];
    __builtin_memcpy(values, smallest, sizeof values);
    double result = infinity;
    for (const double value : values) {
        result = value < result ? value : result;
    }
    for (; i < n; ++i) {
        result = x[i] > bound && x[i] < result ? x[i] : result;
    }
    return result;
}

constexpr SpectrumKernels table{anyOutside<true>, anyOutside<false>, countAtMost, largestAbove, smallestAbove};
