// The crossing times for one instruction set; included behind VectorType.inl and VectorSelection.inl. Each step rounds as
// the one of crossingTime() does.

VECTOR_TARGET static void interpolateCrossings(const double* times, const double* values, std::size_t n, double level,
                                               double* crossings) {
    const Doubles target = level - Doubles{};
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Doubles t0 = load(times + i - 1);
        const Doubles t1 = load(times + i);
        const Doubles x0 = load(values + i - 1);
        const Doubles x1 = load(values + i);
        const Doubles time = t0 + (t1 - t0) * ((target - x0) / (x1 - x0));
        store(crossings + i, select((time >= t0) & (time <= t1), time, t1));
    }
    for (; i < n; ++i) {
        crossings[i] = crossingTime(times[i - 1], values[i - 1], times[i], values[i], level);
    }
}
