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
        fftw_forget_wisdom();
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

/// Time of the first transform of a length while the measurement of a long one is under way, against one transform.
void firstTransform(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    Buffers buffers(length);
    Buffers longBuffers(131072);
    double worst = 0;
    double slowestStep = 0;
    fftbridge::FftPlanCache longCache;
    for (auto _ : state) {
        longCache = {};
        {
            const std::lock_guard lock(fftwApi::fftwAccessMutex_);
            fftw_forget_wisdom();
        }
        fftbridge::interleavedFFT1D<double, 2>({}, longCache, longBuffers.in.data(), longBuffers.out.data(), 131072, 1,
                                               -1, false);
        fftwApi::getInstance().improvePlans();
        fftbridge::FftPlanCache cache;
        const double first = secondsOf([&] {
            fftbridge::interleavedFFT1D<double, 2>({}, cache, buffers.in.data(), buffers.out.data(), length, 1, -1,
                                                   false);
        });
        state.SetIterationTime(first);
        worst = std::max(worst, first);
        cache = {};
        for (bool more = true; more;) {
            slowestStep = std::max(slowestStep, secondsOf([&] { more = fftwApi::getInstance().improvePlans(); }));
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    state.counters["worst_ms"] = 1e3 * worst;
    state.counters["slowest_step_ms"] = 1e3 * slowestStep;
}

BENCHMARK(firstTransform)->ArgName("length")->Arg(1024)->Arg(65536)->Arg(1000000)->Iterations(3)->UseManualTime();

}  // namespace
