// The comparison with a level for one instruction set; included behind VectorType.inl and VectorSelection.inl.

VECTOR_TARGET static LevelBits compareWithLevel(const double* values, std::size_t n, const LevelBounds& bounds) {
    const Doubles riseReady = bounds.riseReady - Doubles{};
    const Doubles level = bounds.level - Doubles{};
    const Doubles fallReady = bounds.fallReady - Doubles{};
    LevelBits bits{};
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Doubles value = load(values + i);
        bits.isLow |= bitsOf(value <= riseReady) << i;
        bits.atMost |= bitsOf(value <= level) << i;
        bits.atLeast |= bitsOf(value >= level) << i;
        bits.isHigh |= bitsOf(value >= fallReady) << i;
    }
    for (; i < n; ++i) {
        bits.isLow |= std::uint64_t{values[i] <= bounds.riseReady} << i;
        bits.atMost |= std::uint64_t{values[i] <= bounds.level} << i;
        bits.atLeast |= std::uint64_t{values[i] >= bounds.level} << i;
        bits.isHigh |= std::uint64_t{values[i] >= bounds.fallReady} << i;
    }
    return bits;
}

/// All are compared: the place where the times reach the bound would be mispredicted.
VECTOR_TARGET static std::size_t countTimesBefore(const double* times, std::size_t n, double time) {
    const Doubles bound = time - Doubles{};
    Integers counts{};  // minus one for each
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        counts += load(times + i) < bound;
    }
    std::int64_t count = 0;
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        count -= counts[lane];
    }
    for (; i < n; ++i) {
        count += times[i] < time ? 1 : 0;
    }
    return static_cast<std::size_t>(count);
}
