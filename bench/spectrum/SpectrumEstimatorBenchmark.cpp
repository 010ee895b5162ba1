// The spectrum estimator against the bare transforms that its segments take, channels against channels, and the time
// from a change of settings to the first spectrum.

#include <fftw3.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

#include "AlignedVector.h"
#include "Rivals.h"
#include "SpectrumEstimator.h"
#include "fftbridge.h"

namespace {

using bench::compare;
using dspwavedecks::AlignedVector;
using dspwavedecks::SpectrumEstimator;
using Values = std::vector<double>;

Values noise(std::size_t n) {
    std::mt19937 random(1);
    std::normal_distribution<double> gauss;
    Values values(n);
    std::generate(values.begin(), values.end(), [&] { return gauss(random); });
    return values;
}

void waitForBetterPlans() {
    while (fftbridge::fftwApi::getInstance().improvePlans()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

/// Transforms of a measured plan, without anything around them.
class BareTransforms {
public:
    explicit BareTransforms(std::size_t length) : in_(2 * length, 0.5), out_(2 * length) {
        const std::lock_guard lock(fftbridge::fftwApi::fftwAccessMutex_);
        plan_.reset(fftw_plan_dft_1d(static_cast<int>(length), reinterpret_cast<fftw_complex*>(in_.data()),
                                     reinterpret_cast<fftw_complex*>(out_.data()), FFTW_FORWARD,
                                     FFTW_MEASURE | FFTW_PRESERVE_INPUT));
        std::fill(in_.begin(), in_.end(), 0.5);
    }
    void run(std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i) {
            fftw_execute(plan_.get());
        }
    }

private:
    AlignedVector<double> in_;
    AlignedVector<double> out_;
    std::unique_ptr<fftw_plan_s, decltype(&fftw_destroy_plan)> plan_{nullptr, &fftw_destroy_plan};
};

/// Real channels, N points, hann, half overlapping, dBm, exponential averaging; a frame holds `segments` segments.
class Welch {
public:
    Welch(std::size_t length, std::size_t segments, std::size_t channels = 1)
        : frameSize_(segments * length / 2), channels_(channels), frame_(noise(frameSize_ * channels)) {
        estimator_.setFrequencyResolutionMethod(SpectrumEstimator::FrequencyResolutionMethod::windowLength);
        estimator_.setWindowLength(length);
        estimator_.setAutoFFTLength(false);
        estimator_.setFFTLength(length);
        estimator_.setOverlapPercent(50.0);
        estimator_.setFrequencyRange(SpectrumEstimator::FrequencyRange::oneSided);
        run();
        waitForBetterPlans();
    }
    void run() { run(frame_.data()); }
    void run(const double* frameData) {
        if (!estimator_.isLocked()) {
            const auto frame = static_cast<int>(frameSize_);
            estimator_.setup(1, {frame}, {frame}, {static_cast<int>(channels_)}, {0}, true);
        }
        estimator_.computeSpectrum(frameData, out_, 0);
        benchmark::DoNotOptimize(out_.data());
    }
    const double* frame() const { return frame_.data(); }
    const Values& spectrum() const { return out_; }
    SpectrumEstimator& estimator() { return estimator_; }

private:
    std::size_t frameSize_;
    std::size_t channels_;
    Values frame_;
    Values out_;
    SpectrumEstimator estimator_;
};

/// White noise of variance 1 reads 30 dBm over the band: a half of the points, 1.5 of them in an RBW.
void assertLevel(const Values& spectrum, std::size_t points) {
    double power = 0.0;
    for (std::size_t k = points; k < 2 * points; ++k) {
        power += std::pow(10.0, (spectrum.at(k) - 30.0) / 10.0) / 1.5;
    }
    if (std::abs(power - 1.0) > 0.3) {
        throw std::logic_error("the spectrum is wrong");
    }
}

/// Arguments: length, segments a frame. The yardstick is as many bare transforms.
void welch(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const auto segments = static_cast<std::size_t>(state.range(1));
    Welch subject(length, segments);
    const BareTransforms rival(length);
    compare(
        state, segments * length / 2, [&] { subject.run(); }, [&] { rival.run(segments); });
    assertLevel(subject.spectrum(), length / 2 + 1);
}
BENCHMARK(welch)
    ->ArgNames({"N", "segments"})
    ->Args({1024, 64})
    ->Args({4096, 64})
    ->Args({16384, 64})
    ->Args({65536, 64})
    ->Args({1024, 1})
    ->Args({1024, 8})
    ->UseManualTime()
    ->MinTime(1.0);

/// Argument: channels. The yardstick takes the same samples as frames of one channel.
void channels(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    Welch subject(1024, 64, count);
    Welch rival(1024, 64, 1);
    compare(
        state, count * 64 * 512, [&] { subject.run(); },
        [&] {
            for (std::size_t channel = 0; channel < count; ++channel) {
                rival.run();
            }
        });
}
BENCHMARK(channels)->ArgName("channels")->Arg(2)->Arg(4)->Arg(8)->Arg(16)->UseManualTime()->MinTime(1.0);

/// 16 M samples from memory in frames of 64 segments; compare_with_scipy.py sets this beside scipy.signal.welch.
void fromMemory(benchmark::State& state) {
    constexpr std::size_t length = 1024;
    constexpr std::size_t frame = 64 * length / 2;
    Welch subject(length, 64);
    const Values samples = noise(std::size_t{1} << 24U);
    Values out;
    for (auto _ : state) {
        state.SetIterationTime(bench::secondsOf([&] {
            for (std::size_t from = 0; from + frame <= samples.size(); from += frame) {
                subject.estimator().computeSpectrum(samples.data() + from, out, 0);
            }
        }));
    }
    assertLevel(out, length / 2 + 1);
    state.counters["ns"] =
        benchmark::Counter(static_cast<double>(samples.size()) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(fromMemory)->UseManualTime()->MinTime(1.0);

/// A program that improves its plans, far busier than any: lengths never used before get a quick plan and are measured
/// one after the other, with a step every two milliseconds.
class PlansInTheMaking {
public:
    PlansInTheMaking() : thread_([this] { run(); }) {}
    ~PlansInTheMaking() {
        stop_ = true;
        thread_.join();
    }
    PlansInTheMaking(const PlansInTheMaking&) = delete;
    PlansInTheMaking& operator=(const PlansInTheMaking&) = delete;
    /// Seconds that the longest step took.
    double longestStep() const { return longestStep_; }

private:
    void run() {
        fftbridge::FftPlanCache plans;
        for (std::size_t length = 4096; !stop_; length += 512) {
            const AlignedVector<double> in(2 * length);
            AlignedVector<double> out(2 * length);
            fftbridge::interleavedFFT1D<double, 2>({}, plans, in.data(), out.data(), length, 1, -1, false);
            bool more = true;
            while (more && !stop_) {
                const double seconds =
                    bench::secondsOf([&] { more = fftbridge::fftwApi::getInstance().improvePlans(); });
                longestStep_ = std::max(longestStep_.load(), seconds);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }
    }

    std::atomic<bool> stop_{false};
    std::atomic<double> longestStep_{0.0};
    std::thread thread_;
};

/// Arguments: length, whether better plans are being made meanwhile. From a change of the window's length to the first
/// spectrum, the frame of one segment included; the yardstick is the bare transform. Each time the length is another
/// one, of 32 near the one told, so that its quick plan has to be made first.
void firstSpectrum(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const Values samples = noise(length);
    const BareTransforms rival(length);
    std::vector<double> times;
    SpectrumEstimator estimator;
    estimator.setFrequencyResolutionMethod(SpectrumEstimator::FrequencyResolutionMethod::windowLength);
    estimator.setAutoFFTLength(false);
    std::unique_ptr<PlansInTheMaking> plans(state.range(1) != 0 ? new PlansInTheMaking : nullptr);
    Values out;
    for (auto _ : state) {
        times.push_back(bench::secondsOf([&] {
            const std::size_t points = length - length / 64 * (times.size() % 32);
            estimator.setWindowLength(points);
            estimator.setFFTLength(points);
            estimator.release(true);
            const auto frame = static_cast<int>(points);
            estimator.setup(1, {frame}, {frame}, {1}, {0}, true);
            estimator.computeSpectrum(samples.data(), out, 0);
        }));
        state.SetIterationTime(times.back());
    }
    const double longestStep = plans != nullptr ? plans->longestStep() : 0.0;
    plans.reset();
    const double transform = bench::secondsOf([&] { rival.run(10); }) / 10;
    state.counters["ms"] = bench::quantile(times, 0.5) * 1e3;
    state.counters["p95_ms"] = bench::quantile(times, 0.95) * 1e3;
    state.counters["slowest_ms"] = bench::quantile(times, 1.0) * 1e3;
    state.counters["transforms"] = bench::quantile(times, 0.5) / transform;
    state.counters["longest_step_ms"] = longestStep * 1e3;
}
BENCHMARK(firstSpectrum)
    ->ArgNames({"N", "improving"})
    ->Args({1024, 0})
    ->Args({65536, 0})
    ->Args({1000000, 0})
    ->Args({1024, 1})
    ->Args({65536, 1})
    ->UseManualTime()
    ->MinTime(0.5);

/// Arguments: segments a frame, whether the samples are complex. A bank of 1024 bands and 12 taps against its
/// transforms.
void filterBank(benchmark::State& state) {
    constexpr std::size_t bands = 1024;
    const auto segments = static_cast<std::size_t>(state.range(0));
    const bool isComplex = state.range(1) != 0;
    const auto frame = static_cast<int>(segments * bands);
    SpectrumEstimator estimator;
    estimator.setMethod(SpectrumEstimator::Method::filterBank);
    estimator.setFrequencyResolutionMethod(SpectrumEstimator::FrequencyResolutionMethod::numFrequencyBands);
    estimator.setAutoFFTLength(false);
    estimator.setFFTLength(bands);
    estimator.setup(1, {frame}, {frame}, {isComplex ? 2 : 1}, {isComplex ? 1 : 0}, true);
    const Values samples = noise(segments * bands * 2);
    Values out;
    const auto run = [&] { estimator.computeSpectrum(samples.data(), out, 0); };
    run();
    waitForBetterPlans();
    const BareTransforms rival(bands);
    compare(state, segments * bands, run, [&] { rival.run(segments); });
}
BENCHMARK(filterBank)
    ->ArgNames({"segments", "complex"})
    ->ArgsProduct({{1, 8, 64}, {0, 1}})
    ->UseManualTime()
    ->MinTime(1.0);

}  // namespace
