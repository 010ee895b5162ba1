// The loops of VectorMath.h over vectors of one instruction set; see VectorType.inl for the macros that shape them.
// Included behind VectorType.inl and VectorSelection.inl.

constexpr std::int64_t mantissaMask = 0x000fffffffffffff;
constexpr std::int64_t magnitudeMask = 0x7fffffffffffffff;
constexpr std::int64_t oneBits = 0x3ff0000000000000;           // bits of 1.0
constexpr std::int64_t rootHalfBits = 0x3fe6a09e667f3bcd;      // bits of sqrt(1/2)
constexpr std::int64_t exponentAsDouble = 0x4330000000000000;  // bits of 2^52, whose last place is 1

constexpr double infinity = __builtin_inf();
constexpr double smallestNormal = 0x1p-1022;

// 10 * log10(2), split into a part with 42 bits, whose product with an exponent is exact, and the rest.
constexpr double decibelsOfTwoHigh = 0x1.8151824c75800p+1;
constexpr double decibelsOfTwoLow = 0x1.fabf59b5d80b8p-45;

#if VECTOR_LANES == 8
constexpr unsigned char allLanes = 0xff;  // the forms without a mask make GCC 12 warn of a variable in its own header
#endif

VECTOR_INLINE Doubles squareRoot(Doubles x) {
#if VECTOR_LANES == 2
    return Doubles{__builtin_sqrt(x[0]), __builtin_sqrt(x[1])};
#elif VECTOR_LANES == 8
    return (Doubles)_mm512_maskz_sqrt_pd(allLanes, (__m512d)x);
#else
    return (Doubles)_mm256_sqrt_pd((__m256d)x);
#endif
}

#if VECTOR_LANES == 8

/// 10 * log10(x * 2^-shift) for x finite, positive and normal.
/// Division is the slowest instruction of the usual way, which is the one below; a register holds a table here.
/// x = 2^e * m with m in 1 .. 2. The first four bits of m choose c, a short number near 1 / m, and -10 * log10(c); with
/// r = m * c - 1, in -0.029 .. 0.063, 10 * log10(1 + r) = r * P(r). The P below departs from that by 9e-17 dB
/// at most (Chebyshev interpolation). The first c is 1, so that powers of two have no part of the table's rounding.
VECTOR_INLINE Doubles decibelsOfNormal(Doubles x, Doubles shift) {
    const Doubles e = (Doubles)_mm512_maskz_getexp_pd(allLanes, (__m512d)x) - shift;
    const Doubles m = (Doubles)_mm512_maskz_getmant_pd(allLanes, (__m512d)x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_zero);
    const __m512i place = (__m512i)((Naturals)m >> 48);  // the four lowest bits count
    const Doubles c = (Doubles)_mm512_permutex2var_pd(
        (__m512d)Doubles{0x1.0000000000000p+0, 0x1.d420000000000p-1, 0x1.bac0000000000p-1, 0x1.a420000000000p-1,
                         0x1.8fa0000000000p-1, 0x1.7d00000000000p-1, 0x1.6c20000000000p-1, 0x1.5ca0000000000p-1},
        place,
        (__m512d)Doubles{0x1.4e60000000000p-1, 0x1.4140000000000p-1, 0x1.3520000000000p-1, 0x1.29e0000000000p-1,
                         0x1.1f80000000000p-1, 0x1.15c0000000000p-1, 0x1.0ca0000000000p-1, 0x1.0420000000000p-1});
    const Doubles ofC = (Doubles)_mm512_permutex2var_pd(
        (__m512d)Doubles{0.0, 0x1.8e6b51511cfd7p-2, 0x1.43215cd0c50bcp-1, 0x1.b7c39f516efeap-1, 0x1.138014d62e694p+0,
                         0x1.48902b68b3391p+0, 0x1.7aee09162c1c5p+0, 0x1.ab4b13c2c6170p+0},
        place,
        (__m512d)Doubles{0x1.d9b14c82f222fp+0, 0x1.031b38ce3bea0p+1, 0x1.187e6de6a86cdp+1, 0x1.2d1a19ff71492p+1,
                         0x1.40cf2164c4674p+1, 0x1.53fd0414753bcp+1, 0x1.668ee10e2111dp+1, 0x1.786eb666d0ac6p+1});
    const Doubles zero{};
    const Doubles r = multiplyAdd(m, c, zero - 1.0);
    Doubles p = zero + 0x1.b0bd3ca486390p-2;
    p = multiplyAdd(p, r, zero - 0x1.14dd6602cf57bp-1);
    p = multiplyAdd(p, r, zero + 0x1.3daf6292de29bp-1);
    p = multiplyAdd(p, r, zero - 0x1.729999b2a29f5p-1);
    p = multiplyAdd(p, r, zero + 0x1.bcb7b1552e0e9p-1);
    p = multiplyAdd(p, r, zero - 0x1.15f2cecb0e613p+0);
    p = multiplyAdd(p, r, zero + 0x1.729913c4a9bafp+0);
    p = multiplyAdd(p, r, zero - 0x1.15f2ced385165p+1);
    p = multiplyAdd(p, r, zero + 0x1.15f2ced384f29p+2);
    const Doubles low = multiplyAdd(e, zero + decibelsOfTwoLow, multiplyAdd(p, r, ofC));
    return multiplyAdd(e, zero + decibelsOfTwoHigh, low);
}

VECTOR_INLINE bool allNormal(Doubles x) {
    // Of positive numbers the bits stand in the order of the numbers; negative ones and NaN lie above as unsigned ones.
    constexpr std::uint64_t smallestBits = 0x0010000000000000;
    constexpr std::uint64_t infinityBits = 0x7ff0000000000000;
    return _mm512_cmplt_epu64_mask((__m512i)((Naturals)x - smallestBits),
                                   _mm512_set1_epi64(infinityBits - smallestBits)) == allLanes;
}

#else

/// 10 * log10(x * 2^-shift) for x finite, positive and normal.
/// x = 2^e * m with m in sqrt(1/2) .. sqrt(2), so that e is 0 about x = 1 and nothing cancels there. With
/// s = (m - 1) / (m + 1), 10 * log10(m) = 20 / ln(10) * atanh(s) = s * P(s^2); the P below departs from that by
/// 1.6e-15 at most over |s| <= 0.1716 (Chebyshev interpolation), which is 2.7e-16 dB.
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
    const Doubles low = multiplyAdd(e, zero + decibelsOfTwoLow, s * p);
    return multiplyAdd(e, zero + decibelsOfTwoHigh, low);
}

VECTOR_INLINE bool allNormal(Doubles x) {
    return !any(~((x >= smallestNormal) & (x < infinity)));
}

#endif

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
    if (__builtin_expect(!allNormal(x), 0)) {
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

VECTOR_TARGET void windowReal(const double* samples, const double* window, double* __restrict spectrum, std::size_t n) {
    std::size_t i = 0;
    for (; lanes > 2 && i + lanes <= n; i += lanes) {  // of vectors of two, the plain loop is the faster one
        Doubles low;
        Doubles high;
        interleave(load(samples + i) * load(window + i), Doubles{}, low, high);
        store(spectrum + 2 * i, low);
        store(spectrum + 2 * i + lanes, high);
    }
    for (; i < n; ++i) {
        spectrum[2 * i] = samples[i] * window[i];
        spectrum[2 * i + 1] = 0;
    }
}

// The compilers vectorise the next three loops as well as anything written out: the comparisons become one maximum or
// minimum instruction, which treats NaN in just this way.

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
#elif VECTOR_LANES == 8
    Doubles real;
    Doubles imaginary;
    separate(low, high, real, imaginary);
    return real + imaginary;
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
    // Four vectors at a time are looked at as one: their sum is infinite or NaN if one is, and its product with 0 is no
    // 0 then. (A sum of finite ones that overflows takes the longer way for nothing.) Choosing in each lane, which only
    // the others need, takes half of the time.
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        Doubles y[4];
        for (std::size_t part = 0; part < 4; ++part) {
            y[part] = scale * magnitudesSquared(spectrum + 2 * (i + part * lanes));
        }
        const bool allFinite = !any(((y[0] + y[1]) + (y[2] + y[3])) * 0.0 != 0.0);
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
