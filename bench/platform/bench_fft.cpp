// The FFT layer against bare fftw_execute of a measured plan, and what the first transform of a length costs.

#include "AlignedVector.h"
#include "Rivals.h"
#include "fftbridge.h"

#include <fftw3.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <random>
#include <thread>

namespace {

using bench::compare;
using bench::secondsOf;
using dspwavedecks::AlignedVector;
using fftbridge::fftwApi;

struct Buffers {
    explicit Buffers(std::size_t samples) : in(2 * samples), out(2 * samples) {
        std::mt19937 random(1);
        std::normal_distribution<double> normal;
        std::generate(in.begin(), in.end(), [&] { return normal(random); });
    }
    AlignedVector<double> in;
    AlignedVector<double> out;
};

fftw_complex* asComplex(AlignedVector<double>& values) {
    return reinterpret_cast<fftw_complex*>(values.data());
}

/// A measured plan of `howMany` transforms, run without anything around it.
class BareFftw {
public:
    BareFftw(std::size_t length, std::size_t howMany, Buffers& buffers) {
        Buffers scratch(length * howMany);
        const std::lock_guard lock(fftwApi::fftwAccessMutex_);
        const int n = static_cast<int>(length);
        for (Buffers* place : {&scratch, &buffers}) {  // measured on the scratch buffers, then known for the others
            const unsigned flags = FFTW_MEASURE | FFTW_PRESERVE_INPUT | (place == &buffers ? FFTW_WISDOM_ONLY : 0U);
            plan_.reset(fftw_plan_many_dft(1, &n, static_cast<int>(howMany), asComplex(place->in), nullptr, 1, n,
                                           asComplex(place->out), nullptr, 1, n, FFTW_FORWARD, flags));
        }
    }
    void run() const { fftw_execute(plan_.get()); }

private:
    std::unique_ptr<fftw_plan_s, decltype(&fftw_destroy_plan)> plan_{nullptr, &fftw_destroy_plan};
};

void forgetWisdom() {
    const std::lock_guard lock(fftwApi::fftwAccessMutex_);
    fftw_forget_wisdom();
}

/// Arguments: length, transforms in a call, whether the plan is measured or the quick one.
void transform(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const auto howMany = static_cast<std::size_t>(state.range(1));
    const bool measured = state.range(2) != 0;
    Buffers buffers(length * howMany);
    fftbridge::FftPlanCache cache;
    const auto run = [&] {
        fftbridge::interleavedFFT1D<double, 2>({}, cache, buffers.in.data(), buffers.out.data(), length, howMany, -1,
                                               measured);
    };
    if (!measured) {
        forgetWisdom();
        run();  // takes the quick plan before the yardstick is measured
    }
    const BareFftw bare(length, howMany, buffers);
    compare(state, howMany, run, [&] { bare.run(); });
}

BENCHMARK(transform)
    ->ArgNames({"length", "transforms", "measured"})
    ->ArgsProduct({{256, 1024, 4096, 16384, 65536}, {1}, {1, 0}})
    ->Args({1024, 8, 1})
    ->Args({65536, 8, 1})
    ->UseManualTime();

/// Milliseconds from an unknown length to its first spectrum.
double firstTransformOf(std::size_t length) {
    forgetWisdom();
    Buffers buffers(length);
    fftbridge::FftPlanCache cache;
    return 1e3 * secondsOf([&] {
               fftbridge::interleavedFFT1D<double, 2>({}, cache, buffers.in.data(), buffers.out.data(), length, 1, -1,
                                                      false);
           });
}

/// The first transform of a length while a child measures the plan of a long one, against the same without that.
void firstTransform(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    constexpr std::size_t longLength = 131072;
    Buffers longBuffers(longLength);
    std::vector<double> alone;
    std::vector<double> beside;
    std::vector<double> takeOver;
    for (auto _ : state) {
        alone.push_back(firstTransformOf(length));
        fftbridge::FftPlanCache longCache;
        fftbridge::interleavedFFT1D<double, 2>({}, longCache, longBuffers.in.data(), longBuffers.out.data(), longLength,
                                               1, -1, false);
        fftwApi::getInstance().improvePlans();
        beside.push_back(firstTransformOf(length));
        state.SetIterationTime(1e-3 * beside.back());
        double lastStep = 0;  // the one that takes the plan over
        for (bool more = true; more;) {
            lastStep = 1e3 * secondsOf([&] { more = fftwApi::getInstance().improvePlans(); });
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        takeOver.push_back(lastStep);
    }
    state.counters["alone_ms"] = bench::quantile(alone, 0.5);
    state.counters["beside_ms"] = bench::quantile(beside, 0.5);
    state.counters["beside_worst_ms"] = bench::quantile(beside, 1);
    state.counters["take_over_ms"] = bench::quantile(takeOver, 0.5);
}

BENCHMARK(firstTransform)->ArgName("length")->Arg(1024)->Arg(65536)->Arg(1000000)->Iterations(7)->UseManualTime();

}  // namespace
