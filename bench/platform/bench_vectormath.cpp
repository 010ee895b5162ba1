// Vectorised loops against the plain formula, element by element, for each instruction set of the machine.

#include "AlignedVector.h"
#include "Rivals.h"
#include "ScalarFormulas.h"
#include "VectorKernels.h"

#include <cmath>
#include <random>
#include <string>
#include <utility>

namespace {

using bench::compare;
using dspwavedecks::AlignedVector;
using dspwavedecks::InstructionSet;
using dspwavedecks::vectormath::kernelsFor;
using dspwavedecks::vectormath::VectorKernels;

constexpr std::size_t million = 1 << 20;  // bins of a very long spectrum
constexpr std::size_t hot = 1024;         // bins that stay in the first cache

AlignedVector<double> noise(std::size_t n) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    AlignedVector<double> values(n);
    std::generate(values.begin(), values.end(), [&] { return normal(random); });
    return values;
}

AlignedVector<double> powers(std::size_t n) {
    AlignedVector<double> values = noise(n);
    std::transform(values.begin(), values.end(), values.begin(), [](double x) { return std::exp(8 * x); });
    return values;
}

void decibels(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    const AlignedVector<double> power = powers(million);
    AlignedVector<double> level(million);
    compare(
        state, million, [&] { kernels.toDecibels(power.data(), level.data(), million, 30, 5e-324); },
        [&] {
            for (std::size_t i = 0; i < million; ++i) {
                level[i] = scalar_formulas::toDecibels(power[i], 30, 5e-324);
            }
        });
}

void powersOfTen(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    AlignedVector<double> level = noise(million);
    std::transform(level.begin(), level.end(), level.begin(), [](double x) { return 40 * x; });
    AlignedVector<double> power(million);
    compare(
        state, million, [&] { kernels.fromDecibels(level.data(), power.data(), million, 30); },
        [&] {
            for (std::size_t i = 0; i < million; ++i) {
                power[i] = scalar_formulas::fromDecibels(level[i], 30);
            }
        });
}

void windowOfReal(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    const AlignedVector<double> samples = noise(hot);
    const AlignedVector<double> window = noise(hot);
    AlignedVector<double> spectrum(2 * hot);
    compare(
        state, hot, [&] { kernels.windowReal(samples.data(), window.data(), spectrum.data(), hot); },
        [&] {
            for (std::size_t i = 0; i < hot; ++i) {
                spectrum[2 * i] = samples[i] * window[i];
                spectrum[2 * i + 1] = 0;
            }
        });
}

void powerOfBins(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    const AlignedVector<double> spectrum = noise(2 * hot);
    AlignedVector<double> power(hot);
    compare(
        state, hot, [&] { kernels.scaledPower(spectrum.data(), 0.5, power.data(), hot); },
        [&] {
            for (std::size_t i = 0; i < hot; ++i) {
                power[i] = scalar_formulas::scaledPower(spectrum.data(), 0.5, i);
            }
        });
}

void average(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    AlignedVector<double> row = noise(hot);
    AlignedVector<double> mean = noise(hot);
    bool found = false;
    compare(
        state, hot, [&] { found |= kernels.averageExponentially(row.data(), mean.data(), hot, 0.25, false); },
        [&] {
            for (std::size_t i = 0; i < hot; ++i) {
                found |= scalar_formulas::averageExponentially(row[i], mean[i], 0.25, false);
            }
        });
    benchmark::DoNotOptimize(found);
}

void averagePower(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    const AlignedVector<double> spectrum = noise(2 * hot);
    AlignedVector<double> mean = noise(hot);
    bool found = false;
    compare(
        state, hot, [&] { found |= kernels.averagePower(spectrum.data(), 0.5, mean.data(), hot, 0.25, false); },
        [&] {
            for (std::size_t i = 0; i < hot; ++i) {
                double row = scalar_formulas::scaledPower(spectrum.data(), 0.5, i);
                found |= scalar_formulas::averageExponentially(row, mean[i], 0.25, false);
            }
        });
    benchmark::DoNotOptimize(found);
}

void hold(benchmark::State& state, InstructionSet set) {
    const VectorKernels& kernels = kernelsFor(set);
    const AlignedVector<double> row = noise(hot);
    AlignedVector<double> held = noise(hot);
    compare(
        state, hot, [&] { kernels.holdMaximum(row.data(), held.data(), hot); },
        [&] {
            for (std::size_t i = 0; i < hot; ++i) {
                held[i] = scalar_formulas::holdMaximum(row[i], held[i]);
            }
        });
}

struct Subject {
    const char* name;
    void (*run)(benchmark::State&, InstructionSet);
    benchmark::IterationCount rounds;
};

constexpr Subject subjects[] = {
    {"decibels", decibels, 60},    {"powers_of_ten", powersOfTen, 60}, {"window_real", windowOfReal, 20000},
    {"power", powerOfBins, 20000}, {"average", average, 20000},        {"average_power", averagePower, 20000},
    {"hold", hold, 20000}};

const bool registered = [] {
    for (const auto& [set, name] : {std::pair{InstructionSet::portable, "/portable"},
                                    {InstructionSet::avx2, "/avx2"},
                                    {InstructionSet::avx512, "/avx512"}}) {
        for (const Subject& subject : subjects) {
            if (isSupported(set)) {
                benchmark::RegisterBenchmark((std::string(subject.name) + name).c_str(), subject.run, set)
                    ->Iterations(subject.rounds)
                    ->UseManualTime();
            }
        }
    }
    return true;
}();

}  // namespace
