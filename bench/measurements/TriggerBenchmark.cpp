// The trigger engine, fed in frames of 1024 with one request for a window behind each, against a
// scalar pass that compares each sample with a level.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "InterleavedComparison.h"
#include "TimeDomainTriggerController.h"

namespace {

using namespace deckutil;

constexpr std::size_t sampleCount = 1 << 18;
constexpr std::size_t frameSize = 1024;
constexpr double interval = 1e-6;
constexpr double timeRange = 5000 * interval;

enum Signal { NoisySine, SquareWave, WhiteNoise };

struct Samples {
    std::vector<double> times, values;
};

Samples makeSamples(int signal) {
    Samples samples;
    std::uint64_t state = 11;
    for (std::size_t i = 0; i < sampleCount; ++i) {
        double noise = -6.0;
        for (int k = 0; k < 12; ++k) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            noise += static_cast<double>(state >> 11) / 0x1p53;
        }
        const double x = static_cast<double>(i);
        samples.times.push_back(x * interval);
        switch (signal) {
            case NoisySine:
                samples.values.push_back(std::sin(x * 0.00628) + 0.02 * noise);
                break;
            case SquareWave:
                samples.values.push_back((i / 50 % 2 == 0 ? 1.0 : -1.0) + 0.02 * noise);
                break;
            default:
                samples.values.push_back(noise);
        }
    }
    return samples;
}

/// The yardstick: one comparison a sample, kept scalar by the barrier.
std::uint64_t comparePass(const std::vector<double>& values, double level) {
    std::uint64_t above = 0;
    for (const double value : values) {
        above += value >= level ? 1 : 0;
        asm volatile("" : "+r"(above));
    }
    return above;
}

std::size_t triggerPass(TimeDomainTriggerController& engine, const Samples& samples) {
    std::size_t windows = 0;
    for (std::size_t begin = 0; begin < sampleCount; begin += frameSize) {
        engine.processSamples(samples.times.data() + begin, samples.values.data() + begin, frameSize, timeRange);
        double start = 0.0;
        double end = 0.0;
        engine.getTriggerWindow(0.0, samples.times[begin + frameSize - 1], timeRange, false, start, end);
        windows += std::isfinite(start) ? 1 : 0;
    }
    return windows;
}

void trigger(benchmark::State& state) {
    const Samples samples = makeSamples(static_cast<int>(state.range(1)));
    TimeDomainTriggerController engine;
    engine.setMode(TDTC::Normal);
    engine.setType(static_cast<TDTC::TypeEnum>(state.range(0)));
    engine.setPolarity(TDTC::Either);
    engine.setHysteresis(0.1);
    engine.setUpperLevel(0.5);
    engine.setLowerLevel(-0.5);
    engine.setTimeout(20 * interval);
    const bool mustFire = state.range(0) == TDTC::Edge || state.range(0) == TDTC::Window;
    if (mustFire && triggerPass(engine, samples) < 20) {
        state.SkipWithError("too few triggers");
        return;
    }
    bench::compare(
        state, sampleCount, [&] { benchmark::DoNotOptimize(triggerPass(engine, samples)); },
        [&] { benchmark::DoNotOptimize(comparePass(samples.values, 0.1)); });
}

}  // namespace

BENCHMARK(trigger)
    ->ArgNames({"type", "signal"})
    ->ArgsProduct({{TDTC::Edge, TDTC::PulseWidth, TDTC::Transition, TDTC::Runt, TDTC::Window, TDTC::Timeout},
                   {NoisySine, SquareWave, WhiteNoise}})
    ->UseManualTime()
    ->MinTime(0.2);
