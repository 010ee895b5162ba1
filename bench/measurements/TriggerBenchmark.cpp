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
constexpr double displaySpan = 5000 * interval;

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

std::size_t triggerPass(TimeDomainTriggerController& engine, const Samples& samples, double timeRange) {
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
    if (mustFire && triggerPass(engine, samples, displaySpan) < 20) {
        state.SkipWithError("too few triggers");
        return;
    }
    bench::compare(
        state, sampleCount, [&] { benchmark::DoNotOptimize(triggerPass(engine, samples, displaySpan)); },
        [&] { benchmark::DoNotOptimize(comparePass(samples.values, 0.1)); });
}

enum Limits { NeverMet, Met, MetOrFree };

/// White noise under a condition that is armed nearly all the time. Its limits are never fulfilled, or one in some
/// hundred of the pulses, transitions and runts is short enough and some stays last for the timeout; edge and window
/// have no limits: they have fired once, or fire again as soon as their window of 100 samples is full. MetOrFree also
/// has an automatic level, and makes a window of its own whenever none has come for 100 samples.
void armedTrigger(benchmark::State& state) {
    const Samples samples = makeSamples(WhiteNoise);
    const bool met = state.range(2) != NeverMet;
    const bool isFree = state.range(2) == MetOrFree;
    const bool hasLimits = state.range(0) != TDTC::Edge && state.range(0) != TDTC::Window;
    const double timeRange = met ? 100 * interval : displaySpan;
    TimeDomainTriggerController engine;
    engine.setMode(isFree ? TDTC::Auto : hasLimits || met ? TDTC::Normal : TDTC::Once);
    engine.setType(static_cast<TDTC::TypeEnum>(state.range(0)));
    engine.setPolarity(static_cast<TDTC::PolarityEnum>(state.range(1)));
    engine.setAutoLevel(isFree);
    engine.setLevel(0.1);
    engine.setUpperLevel(0.5);
    engine.setLowerLevel(-0.5);
    engine.setMaxTime((met ? 0.3 : 1e-4) * interval);
    engine.setTimeout((met ? 9 : 1000) * interval);
    const std::size_t windows = triggerPass(engine, samples, timeRange);
    if (hasLimits && (met ? windows < 20 : windows > 20)) {
        state.SkipWithError("triggers too rarely or too often");
        return;
    }
    bench::compare(
        state, sampleCount, [&] { benchmark::DoNotOptimize(triggerPass(engine, samples, timeRange)); },
        [&] { benchmark::DoNotOptimize(comparePass(samples.values, 0.1)); });
}

}  // namespace

BENCHMARK(armedTrigger)
    ->ArgNames({"type", "polarity", "limits"})
    ->ArgsProduct({{TDTC::Edge, TDTC::PulseWidth, TDTC::Transition, TDTC::Runt, TDTC::Window, TDTC::Timeout},
                   {TDTC::Negative, TDTC::Either, TDTC::Positive},
                   {NeverMet, Met, MetOrFree}})
    ->UseManualTime()
    ->MinTime(0.1);
BENCHMARK(trigger)
    ->ArgNames({"type", "signal"})
    ->ArgsProduct({{TDTC::Edge, TDTC::PulseWidth, TDTC::Transition, TDTC::Runt, TDTC::Window, TDTC::Timeout},
                   {NoisySine, SquareWave, WhiteNoise}})
    ->UseManualTime()
    ->MinTime(0.2);
