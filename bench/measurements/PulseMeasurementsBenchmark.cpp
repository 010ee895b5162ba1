// Pulse measurements with all stages on, against one sum over the span in order; the cache of the time measurements at
// its capacity, frame by frame, against a plain copy of the frame into a ring by index.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "BilevelMeasurements.h"
#include "InterleavedComparison.h"
#include "MeasurementsDataCache.h"

namespace {

using namespace dspwavedecks;

double noise(std::uint64_t& state) {
    double sum = -6.0;
    for (int i = 0; i < 12; ++i) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        sum += static_cast<double>(state >> 11) / 0x1p53;
    }
    return sum;
}

/// A square wave with edges of a tenth of a period and noise: times, then samples.
std::vector<double> pulseSpan(std::size_t count, std::size_t period, double deviation) {
    std::vector<double> span(2 * count);
    std::uint64_t state = 3;
    for (std::size_t i = 0; i < count; ++i) {
        span[i] = static_cast<double>(i) * 1e-6;
        const double phase = static_cast<double>(i % period) / static_cast<double>(period);
        span[count + i] = 2.0 / (1.0 + std::exp(-60.0 * std::sin(6.283185307 * phase))) + deviation * noise(state);
    }
    return span;
}

double sumInOrder(const double* values, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += values[i];
    }
    return sum;
}

void pulseMetrics(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const auto period = static_cast<std::size_t>(state.range(1));
    const std::vector<double> span = pulseSpan(count, period, static_cast<double>(state.range(2)) / 1000.0);
    BilevelMeasurements bilevel;
    bilevel.setComputeTransitions(true);
    bilevel.setComputeAberrations(true);
    bilevel.setComputeCycles(true);
    const double found = bilevel.computeBilevelMetrics(span.data(), {count, 2 * count})->period;
    if (std::fabs(found / (static_cast<double>(period) * 1e-6) - 1.0) > 0.01) {
        state.SkipWithError("the period is wrong");
        return;
    }
    bench::compare(
        state, count,
        [&] {
            bilevel.computeBilevelMetrics(span.data(), {count, 2 * count});
        },
        [&] { benchmark::DoNotOptimize(sumInOrder(span.data() + count, count)); });
}

/// One frame a call: into a full cache, and the newest 5000 samples out of it again, as the filters do.
void cacheFrame(benchmark::State& state) {
    const auto capacity = static_cast<unsigned long>(state.range(0));
    const auto frameSize = static_cast<unsigned long>(state.range(1));
    MeasurementsDataCache cache;
    cache.setCapacity(capacity);
    std::vector<double> frame(2 * frameSize);
    double now = 0.0;
    const auto addFrame = [&] {
        for (unsigned long i = 0; i < frameSize; ++i) {
            frame[i] = now;
            now += 1.0;
        }
        cache.addData(frame.data(), 0, frameSize);
    };
    while (cache.size() < capacity) {
        addFrame();
    }
    std::vector<double> ring(2 * capacity);
    std::vector<double> span;
    std::size_t place = 0;
    bench::compare(
        state, frameSize,
        [&] {
            addFrame();
            const unsigned long first = cache.firstNotBefore(now - 5000.0);
            cache.copyDataInRange({first, cache.size()}, span);
        },
        [&] {
            for (unsigned long i = 0; i < frameSize; ++i) {
                frame[i] = now;
                now += 1.0;
            }
            for (unsigned long i = 0; i < frameSize; ++i) {
                ring[place] = frame[i];
                ring[capacity + place] = frame[frameSize + i];
                place = place + 1 == capacity ? 0 : place + 1;
            }
            span.assign(ring.begin(), ring.begin() + 5000);
            benchmark::ClobberMemory();
        });
    if (span.size() != 5000) {
        state.SkipWithError("the span is wrong");
    }
}

}  // namespace

BENCHMARK(pulseMetrics)
    ->ArgNames({"samples", "period", "noise"})
    ->ArgsProduct({{1 << 20}, {100, 1000, 10000}, {0, 10}})
    ->Args({5000, 500, 10})
    ->UseManualTime();
BENCHMARK(cacheFrame)->ArgNames({"capacity", "frame"})->ArgsProduct({{5000, 13107200}, {1024}})->UseManualTime();
