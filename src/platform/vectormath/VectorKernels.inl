// The loops of VectorMath.h over vectors of one instruction set; see VectorType.inl for the macros that shape them.
// Included behind VectorType.inl and VectorSelection.inl.

constexpr std::int64_t mantissaMask = 0x000fffffffffffff;
constexpr std::int64_t magnitudeMask = 0x7fffffffffffffff;
constexpr std::int64_t oneBits = 0x3ff0000000000000;           // bits of 1.0
constexpr std::int64_t rootHalfBits = 0x3fe6a09e667f3bcd;      // bits of sqrt(1/2)
constexpr std::int64_t exponentAsDouble = 0x4330000000000000;  // bits of 2^52, whose last place is 1

constexpr double infinity = __builtin_inf();
constexpr double smallestNormal = 0x1p-1022;

VECTOR_INLINE Doubles squareRoot(Doubles x) {
#if VECTOR_LANES == 2
    return Doubles{__builtin_sqrt(x[0]), __builtin_sqrt(x[1])};
#else
    return (Doubles)_mm256_sqrt_pd((__m256d)x);
#endif
}

/// 10 * log10(x * 2^-shift) for x finite, positive and normal.
/// x = 2^e * m with m in sqrt(1/2) .. sqrt(2), so that e is 0 about x = 1 and nothing cancels there. With
/// s = (m - 1) / (m + 1), 10 * log10(m) = 20 / ln(10) * atanh(s) = s * P(s^2); the P below departs from that by
/// 1.6e-15 at most over |s| <= 0.1716 (Chebyshev interpolation), which is 2.7e-16 dB. e * (10 * log10(2)) is split into
/// a part with 42 bits, whose product with e is exact, and the rest.
VECTOR_INLINE Doubles decibelsOfNormal(Doubles x, Doubles shift) {
    const Integers raised = (Integers)x + (oneBits - rootHalfBits);
    const Integers biased = (Integers)((Naturals)raised >> 52) | exponentAsDouble;
    const Doubles e = ((Doubles)biased - (0x1p52 + 1023.0)) - shift;
    const Doubles m = (Doubles)((raised & mantissaMask) + rootHalfBits);
    const Doubles s = (m - 1.0) / (m + 1.0);
    const Doubles z = s * s;
    const Doubles zero{};
    Doubles p = zero + 0x1.76674fabdf7cfp-1;
    p = multiplyAdd(p, z, zero + 0x1.92f4f3496b98bp-1);
    p = multiplyAdd(p, z, zero + 0x1.ee2856e5c6857p-1);
    p = multiplyAdd(p, z, zero + 0x1.3da7bea7387dfp+0);
    p = multiplyAdd(p, z, zero + 0x1.bcb7b15df40d7p+0);
    p = multiplyAdd(p, z, zero + 0x1.729913c4ae8bcp+1);
    p = multiplyAdd(p, z, zero + 0x1.15f2ced384f2ap+3);
    const Doubles low = multiplyAdd(e, zero + 0x1.fabf59b5d80b8p-45, s * p);
    return multiplyAdd(e, zero + 0x1.8151824c75800p+1, low);
}

/// 10 * log10(x) where a lane is zero, denormal, negative, infinite or NaN.
VECTOR_INLINE Doubles decibelsOfAny(Doubles x) {
    const Doubles zero{};
    const Integers tiny = x < smallestNormal;
    const Doubles raised = select(tiny, x * 0x1p54, x);
    const Integers regular = (raised > 0.0) & (raised < infinity);
    Doubles result = decibelsOfNormal(select(regular, raised, zero + 1.0), select(tiny, zero + 54.0, zero));
    result = select(x == 0.0, zero - infinity, result);
    result = select(x < 0.0, zero + __builtin_nan(""), result);
    return select(regular | (x <= 0.0), result, x);  // infinity and NaN are their own
}

VECTOR_INLINE Doubles decibelsOf(Doubles x) {
    const Integers regular = (x >= smallestNormal) & (x < infinity);
    if (__builtin_expect(any(~regular), 0)) {
        return decibelsOfAny(x);
    }
    return decibelsOfNormal(x, Doubles{});
}

/// 10^t. With n the integer next to t / log10(2), 10^t = 2^n * 10^r with |r| <= log10(2) / 2; n * log10(2) is split so
/// that its larger part is exact, and 10^r is a polynomial that departs by 3.2e-18 at most (Chebyshev interpolation).
/// 2^n is applied in two factors, so that results overflow to infinity and run through the denormal numbers to 0 with
/// one rounding.
VECTOR_INLINE Doubles powerOfTen(Doubles t) {
    const Doubles zero{};
    constexpr double roundingShift = 0x1.8p52;  // added and taken away, it leaves the nearest integer
    constexpr double bound = 400;               // far outside of what a double holds; NaN passes both tests
    t = select(t > bound, zero + bound, t);
    t = select(t < -bound, zero - bound, t);
    const Doubles n = (t * 0x1.a934f0979a371p+1 + roundingShift) - roundingShift;
    const Doubles r = multiplyAdd(n, zero - 0x1.3fde623e2566bp-43, multiplyAdd(n, zero - 0x1.34413509f7000p-2, t));
    Doubles p = zero + 0x1.fbfbe89083ff2p-13;
    p = multiplyAdd(p, r, zero + 0x1.2f78f949037f2p-10);
    p = multiplyAdd(p, r, zero + 0x1.489787263866ap-8);
    p = multiplyAdd(p, r, zero + 0x1.411659f393362p-6);
    p = multiplyAdd(p, r, zero + 0x1.16e4dfceb62aep-4);
    p = multiplyAdd(p, r, zero + 0x1.a7ed70a4fc4ffp-3);
    p = multiplyAdd(p, r, zero + 0x1.1429ffd1d2e2ap-1);
    p = multiplyAdd(p, r, zero + 0x1.2bd7609fd4064p+0);
    p = multiplyAdd(p, r, zero + 0x1.0470591de2ca8p+1);
    p = multiplyAdd(p, r, zero + 0x1.53524c73cea7fp+1);
    p = multiplyAdd(p, r, zero + 0x1.26bb1bbb55516p+1);
    p = multiplyAdd(p, r, zero + 1.0);
    const Doubles shiftedHalf = n * 0.5 + roundingShift;
    const Doubles shiftedRest = (n - (shiftedHalf - roundingShift)) + roundingShift;
    const Doubles half = (Doubles)(((Integers)shiftedHalf << 52) + oneBits);
    const Doubles rest = (Doubles)(((Integers)shiftedRest << 52) + oneBits);
    return p * half * rest;
}

struct ToDecibels {
    double offset;
    double bias;
    VECTOR_INLINE Doubles apply(const ToDecibels& self, Doubles x) { return self.offset + decibelsOf(x + self.bias); }
};

struct RootToDecibels {
    double fullScale;
    double offset;
    double ceiling;
    double bias;
    VECTOR_INLINE Doubles apply(const RootToDecibels& self, Doubles x) {
        const Doubles amplitude = squareRoot(x) / self.fullScale + self.bias;
        const Doubles level = 2.0 * decibelsOf(amplitude) + self.offset;
        return select(level > self.ceiling, self.ceiling - Doubles{}, level);
    }
};

struct FromDecibels {
    double offset;
    VECTOR_INLINE Doubles apply(const FromDecibels& self, Doubles x) { return powerOfTen((x - self.offset) / 10.0); }
};

struct SquareFromDecibels {
    double offset;
    double resistance;
    VECTOR_INLINE Doubles apply(const SquareFromDecibels& self, Doubles x) {
        const Doubles amplitude = powerOfTen((x - self.offset) / 20.0);
        return amplitude * amplitude / self.resistance;
    }
};

struct SquareRoot {
    VECTOR_INLINE Doubles apply(const SquareRoot&, Doubles x) { return squareRoot(x); }
};

/// destination[i] = operation of source[i]; what is left of the array behind whole vectors goes through one that is
/// filled up with ones.
template <class Operation>
VECTOR_TARGET void forEach(const double* source, double* destination, std::size_t n, const Operation operation) {
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        store(destination + i, Operation::apply(operation, load(source + i)));
    }
    if (i < n) {
        storeSome(destination + i, n - i, Operation::apply(operation, loadSome(source + i, n - i, 1.0)));
    }
}

VECTOR_TARGET void toDecibels(const double* power, double* decibels, std::size_t n, double offset, double bias) {
    forEach(power, decibels, n, ToDecibels{offset, bias});
}

VECTOR_TARGET void rootToDecibels(const double* power, double* decibels, std::size_t n, double fullScale, double offset,
                                  double ceiling, double bias) {
    forEach(power, decibels, n, RootToDecibels{fullScale, offset, ceiling, bias});
}

VECTOR_TARGET void fromDecibels(const double* decibels, double* power, std::size_t n, double offset) {
    forEach(decibels, power, n, FromDecibels{offset});
}

VECTOR_TARGET void squareFromDecibels(const double* decibels, double* power, std::size_t n, double offset,
                                      double resistance) {
    forEach(decibels, power, n, SquareFromDecibels{offset, resistance});
}

VECTOR_TARGET void squareRoots(const double* power, double* roots, std::size_t n) {
    forEach(power, roots, n, SquareRoot{});
}

// The compilers vectorise the next four loops as well as anything written out: the comparisons become one maximum or
// minimum instruction, which treats NaN in just this way.

VECTOR_TARGET void windowReal(const double* samples, const double* window, double* __restrict spectrum, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        spectrum[2 * i] = samples[i] * window[i];
        spectrum[2 * i + 1] = 0;
    }
}

VECTOR_TARGET void scaledPower(const double* spectrum, double scale, double* __restrict power, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        power[i] = scale * (spectrum[2 * i] * spectrum[2 * i] + spectrum[2 * i + 1] * spectrum[2 * i + 1]);
    }
}

VECTOR_TARGET void holdMaximum(const double* row, double* __restrict hold, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        hold[i] = row[i] < hold[i] ? hold[i] : row[i];
    }
}

VECTOR_TARGET void holdMinimum(const double* row, double* __restrict hold, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        hold[i] = hold[i] < row[i] ? hold[i] : row[i];
    }
}

/// Written out, since a compiler takes apart the pairs of samples and puts them together again: 0.6 of its time.
VECTOR_TARGET void windowComplex(const double* samples, const double* window, double* spectrum, std::size_t n) {
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Doubles weights = load(window + i);
        Doubles low;
        Doubles high;
        interleave(weights, weights, low, high);
        store(spectrum + 2 * i, load(samples + 2 * i) * low);
        store(spectrum + 2 * i + lanes, load(samples + 2 * i + lanes) * high);
    }
    for (; i < n; ++i) {
        spectrum[2 * i] = samples[2 * i] * window[i];
        spectrum[2 * i + 1] = samples[2 * i + 1] * window[i];
    }
}

/// Puts the average in the place of `y`; returns a mask of the lanes that were infinite or NaN.
VECTOR_INLINE Integers averageStep(Doubles& y, Doubles m, double weight, Integers useNonFinite) {
    const Integers finite = (Doubles)((Integers)y & magnitudeMask) < infinity;
    y = select(finite | useNonFinite, weight * y + (1 - weight) * m, m);
    return ~finite;
}

VECTOR_TARGET bool averageExponentially(double* row, double* average, std::size_t n, double weight, bool useNonFinite) {
    const Integers use = Integers{} - std::int64_t{useNonFinite};
    Integers notFinite{};
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        Doubles y = load(row + i);
        notFinite |= averageStep(y, load(average + i), weight, use);
        store(row + i, y);
        store(average + i, y);
    }
    if (i < n) {
        Doubles y = loadSome(row + i, n - i, 0.0);
        notFinite |= averageStep(y, loadSome(average + i, n - i, 0.0), weight, use);
        storeSome(row + i, n - i, y);
        storeSome(average + i, n - i, y);
    }
    return any(notFinite);
}

/// re^2 + im^2 of as many samples as there are lanes.
VECTOR_INLINE Doubles magnitudesSquared(const double* spectrum) {
    const Doubles low = load(spectrum) * load(spectrum);
    const Doubles high = load(spectrum + lanes) * load(spectrum + lanes);
#if VECTOR_LANES == 2
    return __builtin_shufflevector(low, high, 0, 2) + __builtin_shufflevector(low, high, 1, 3);
#else
    // Pairs are parted within each half of a vector, and the sums put in order once.
    const Doubles sums =
        __builtin_shufflevector(low, high, 0, 4, 2, 6) + __builtin_shufflevector(low, high, 1, 5, 3, 7);
    return __builtin_shufflevector(sums, sums, 0, 2, 1, 3);
#endif
}

VECTOR_TARGET bool averagePower(const double* spectrum, double scale, double* average, std::size_t n, double weight,
                                bool useNonFinite) {
    const Integers use = Integers{} - std::int64_t{useNonFinite};
    const double rest = 1 - weight;
    Integers notFinite{};
    std::size_t i = 0;
    // Four vectors at a time are looked at as one: a product with 0 is 0 unless its factor is infinite or NaN. Choosing
    // in each lane, which only the others need, takes half of the time.
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        Doubles y[4];
        Doubles zero{};
        for (std::size_t part = 0; part < 4; ++part) {
            y[part] = scale * magnitudesSquared(spectrum + 2 * (i + part * lanes));
            zero += y[part] * 0.0;
        }
        const bool allFinite = !any(zero != 0.0);
        for (std::size_t part = 0; part < 4; ++part) {
            const Doubles m = load(average + i + part * lanes);
            if (allFinite) {
                y[part] = weight * y[part] + rest * m;
            } else {
                notFinite |= averageStep(y[part], m, weight, use);
            }
            store(average + i + part * lanes, y[part]);
        }
    }
    for (; i < n; i += lanes) {
        const std::size_t count = n - i < lanes ? n - i : lanes;
        double bins[2 * lanes] = {};
        __builtin_memcpy(bins, spectrum + 2 * i, 2 * count * sizeof(double));
        Doubles y = scale * magnitudesSquared(bins);
        notFinite |= averageStep(y, loadSome(average + i, count, 0.0), weight, use);
        storeSome(average + i, count, y);
    }
    return any(notFinite);
}

constexpr VectorKernels table{toDecibels,           rootToDecibels, fromDecibels,  squareFromDecibels,
                              squareRoots,          windowReal,     windowComplex, scaledPower,
                              averageExponentially, averagePower,   holdMaximum,   holdMinimum};
