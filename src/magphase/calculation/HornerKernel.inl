// Horner's rule on blocks of points for one instruction set; included behind VectorType.inl.

/// Vectors of points in a block. Each point is a chain of two dependent multiply-adds a step, eight cycles of latency;
/// four vectors of it are 16 operations, which keep two units busy, and leave real and imaginary parts of value and
/// point in 16 registers.
constexpr std::size_t vectorsPerBlock = 4;
constexpr std::size_t pointsPerBlock = vectorsPerBlock * lanes;

VECTOR_TARGET static void evaluateBlock(const double* c, std::size_t count, const double* zReal, const double* zImag,
                                        double* real, double* imag) {
    Doubles zr[vectorsPerBlock];
    Doubles zi[vectorsPerBlock];
    Doubles pr[vectorsPerBlock];
    Doubles pi[vectorsPerBlock];
    for (std::size_t v = 0; v < vectorsPerBlock; ++v) {
        zr[v] = load(zReal + v * lanes);
        zi[v] = load(zImag + v * lanes);
        pr[v] = Doubles{};
        pi[v] = Doubles{};
    }
    for (std::size_t m = count; m-- > 0;) {
        const Doubles coefficient = c[m] - Doubles{};
        for (std::size_t v = 0; v < vectorsPerBlock; ++v) {
            const Doubles previous = pr[v];
            pr[v] = multiplyAdd(pr[v], zr[v], multiplyAdd(pi[v], zi[v], coefficient));
            pi[v] = multiplyAdd(pi[v], zr[v], -(previous * zi[v]));
        }
    }
    for (std::size_t v = 0; v < vectorsPerBlock; ++v) {
        store(real + v * lanes, pr[v]);
        store(imag + v * lanes, pi[v]);
    }
}

VECTOR_TARGET static void evaluate(const double* c, std::size_t count, const double* zReal, const double* zImag,
                                   std::size_t points, double* real, double* imag) {
    std::size_t k = 0;
    for (; k + pointsPerBlock <= points; k += pointsPerBlock) {
        evaluateBlock(c, count, zReal + k, zImag + k, real + k, imag + k);
    }
    if (k == points) {
        return;
    }
    if (points >= pointsPerBlock) {  // the last block once more over some of the points before it
        k = points - pointsPerBlock;
        evaluateBlock(c, count, zReal + k, zImag + k, real + k, imag + k);
        return;
    }
    double padded[4][pointsPerBlock] = {};
    for (std::size_t i = 0; i < points; ++i) {
        padded[0][i] = zReal[i];
        padded[1][i] = zImag[i];
    }
    evaluateBlock(c, count, padded[0], padded[1], padded[2], padded[3]);
    for (std::size_t i = 0; i < points; ++i) {
        real[i] = padded[2][i];
        imag[i] = padded[3][i];
    }
}
