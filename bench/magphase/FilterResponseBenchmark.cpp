// The frequency response of a filter against the complex multiply-adds that it takes, at the rate of which the widest
// vector unit of the machine is capable: four fused operations a complex multiply-add, all operands in registers.
// A sample is one multiply-add, that is one tap at one point.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "DigitalFilterFrequencyResponse.h"
#include "InterleavedComparison.h"
#include "UnitCirclePolynomial.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

constexpr std::size_t chains = 16;  // enough to hide the latency of two units

/// Runs `rounds` multiply-adds in each of `chains` accumulators and returns a value that depends on all of them.
double multiplyAddsPortable(std::size_t rounds) {
    typedef double Vector __attribute__((vector_size(16)));
    Vector sums[chains] = {};
    const Vector factor{0.999, 0.998};
    const Vector addend{1e-3, 2e-3};
    for (std::size_t r = 0; r < rounds; ++r) {
        for (Vector& sum : sums) {
            sum = sum * factor + addend;
        }
    }
    double result = 0;
    for (const Vector& sum : sums) {
        result += sum[0];
    }
    return result;
}

#if defined(__x86_64__)
__attribute__((target("avx2,fma"))) double multiplyAddsAvx2(std::size_t rounds) {
    constexpr std::size_t avx2Chains = 12;  // with factor and addend they fit 16 registers
    __m256d sums[avx2Chains];
    std::fill(sums, sums + avx2Chains, _mm256_setzero_pd());
    const __m256d factor = _mm256_set1_pd(0.999);
    const __m256d addend = _mm256_set1_pd(1e-3);
    for (std::size_t r = 0; r < rounds * chains / avx2Chains; ++r) {
        for (std::size_t i = 0; i < avx2Chains; ++i) {
            sums[i] = _mm256_fmadd_pd(sums[i], factor, addend);
        }
    }
    double result = 0;
    for (std::size_t i = 0; i < avx2Chains; ++i) {
        result += sums[i][0];
    }
    return result;
}

__attribute__((target("avx512f"))) double multiplyAddsAvx512(std::size_t rounds) {
    __m512d sums[chains];
    std::fill(sums, sums + chains, _mm512_setzero_pd());
    const __m512d factor = _mm512_set1_pd(0.999);
    const __m512d addend = _mm512_set1_pd(1e-3);
    for (std::size_t r = 0; r < rounds; ++r) {
        for (std::size_t i = 0; i < chains; ++i) {
            sums[i] = _mm512_fmadd_pd(sums[i], factor, addend);
        }
    }
    double result = 0;
    for (std::size_t i = 0; i < chains; ++i) {
        result += sums[i][0];
    }
    return result;
}
#endif

/// Does as many complex multiply-adds as told at full rate.
void doComplexMultiplyAdds(std::size_t count) {
    const std::string widest = dspwavedecks::supportedUnitCircleKernels().back().instructionSet;
    double result = 0;
#if defined(__x86_64__)
    if (widest == "avx512") {
        result = multiplyAddsAvx512(4 * count / (8 * chains));
    } else if (widest == "avx2") {
        result = multiplyAddsAvx2(4 * count / (4 * chains));
    } else
#endif
    {
        result = multiplyAddsPortable(4 * count / (2 * chains));
    }
    benchmark::DoNotOptimize(result);
}

/// Range: points, taps, 1 to change the grid before each response.
void frequencyResponse(benchmark::State& state) {
    const auto points = static_cast<std::size_t>(state.range(0));
    const auto taps = static_cast<std::size_t>(state.range(1));
    dspwavedecks::DigitalFilterFrequencyResponse response;
    response.setFFTLength(points);
    std::vector<std::vector<double>> numerators(1, std::vector<double>(taps));
    std::vector<std::vector<double>> denominators{{1.0}};
    double sum = 0;
    for (std::size_t m = 0; m < taps; ++m) {
        sum += numerators[0][m] = std::sin(1.0 + 1.7 * static_cast<double>(m));
    }
    std::vector<double> out;
    bench::compare(
        state, points * taps,
        [&] {
            if (state.range(2) != 0) {
                response.setFFTLength(points);
            }
            response.freqz(numerators, denominators, out);
        },
        [&] { doComplexMultiplyAdds(points * taps); });
    if (out.size() != 3 * points || std::abs(out[points] - sum) > 1e-12 * static_cast<double>(taps)) {
        state.SkipWithError("wrong response at 0 Hz");
    }
}

BENCHMARK(frequencyResponse)
    ->ArgNames({"points", "taps", "newGrid"})
    ->Args({2048, 512, 0})
    ->Args({2048, 512, 1})
    ->Args({2039, 509, 0})
    ->Args({2048, 64, 0})
    ->Args({2048, 4096, 0})
    ->UseManualTime();

}  // namespace
