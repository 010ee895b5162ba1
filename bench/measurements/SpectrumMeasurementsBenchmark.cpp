// Each spectrum measurement on one spectrum of 4096 points against a bare transform of 4096 points, all five together
// against it, peaks from a thousand to a million noisy bins against a plain sum of them, and the mask test against
// reading its two arrays. Contestant and yardstick run by turns; the ratio of the medians is printed as a counter.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "../support/InterleavedComparison.h"
#include "ChannelMeasurements.h"
#include "DistortionMeasurements.h"
#include "PeakFinder.h"
#include "PhaseNoise.h"
#include "SpectralMaskTester.h"

namespace {

using namespace dspwavedecks;

constexpr std::size_t numPoints = 4096;
constexpr double binWidth = 10.0;
constexpr int numFrames = 64;

/// Levels in dBm of a noise floor that averages have not smoothed: 10 log10 of an exponential variable.
std::vector<double> noiseLevels(std::size_t count, std::uint64_t seed) {
    std::vector<double> levels(count);
    for (double& level : levels) {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        level = -80.0 + 10.0 * std::log10(-std::log((static_cast<double>(seed >> 11) + 0.5) / 0x1p53));
    }
    return levels;
}

/// Frames of the grid and one channel: noise with a tone and its harmonics, another one each turn, as a repeated one
/// would be learnt by the branch predictor.
class Frames {
public:
    Frames() {
        for (int i = 0; i < numFrames; ++i) {
            std::vector<double> frame;
            for (std::size_t k = 0; k < numPoints; ++k) {
                frame.push_back(binWidth * (static_cast<double>(k) - numPoints / 2.0));
            }
            const std::vector<double> levels = noiseLevels(numPoints, static_cast<std::uint64_t>(i));
            frame.insert(frame.end(), levels.begin(), levels.end());
            for (std::size_t order = 1; order <= 6; ++order) {
                frame[numPoints + numPoints / 2 + 300 * order] = -10.0 * static_cast<double>(order);
            }
            frames.push_back(std::move(frame));
        }
    }
    const double* next() { return frames[turn++ % numFrames].data(); }

private:
    std::vector<std::vector<double>> frames;
    std::size_t turn = 0;
};

/// A bare measured plan, out of place, complex to complex.
class BareTransform {
public:
    BareTransform() : plan(fftw_plan_dft_1d(numPoints, in, out, FFTW_FORWARD, FFTW_MEASURE)) {
        for (std::size_t k = 0; k < numPoints; ++k) {
            in[k][0] = std::sin(static_cast<double>(k));
            in[k][1] = 0.0;
        }
    }
    void run() { fftw_execute(plan); }

private:
    fftw_complex* in = fftw_alloc_complex(numPoints);
    fftw_complex* out = fftw_alloc_complex(numPoints);
    fftw_plan plan;
};

const std::vector<unsigned long> channelRange{numPoints, 2 * numPoints};

struct Peaks {
    PeakFinder finder{-200.0, 10, 5.0, 0.0};
    void run(const double* frame) {
        benchmark::DoNotOptimize(finder.findPeaks(frame, channelRange, PeakSelectionLastMaximum).numPeaks);
    }
};

/// Occupied bandwidth over half of the span, or five channels, each a tenth of it, through root-raised cosines.
struct Channels {
    explicit Channels(ChannelMeasurementEnum::Type type) {
        measurement.setRBW(15.0);
        measurement.setType(type);
        const double halfWidth = type == ChannelMeasurementEnum::Type::acpr ? 2000.0 : 10000.0;
        measurement.setStartFrequency(-halfWidth);
        measurement.setStopFrequency(halfWidth);
        measurement.setFilterShape(ChannelMeasurementEnum::FilterShape::rrc);
        measurement.setFilterCoeff(0.22);
        measurement.setAdjacentBW(4000.0);
        measurement.setACPROffsets({5000.0, 10000.0});
    }
    ChannelMeasurements measurement;
    void run(const double* frame) {
        benchmark::DoNotOptimize(measurement.computeChannelMeasurements(frame, frame, channelRange).channelPower);
    }
};

struct Distortion {
    explicit Distortion(DistortionMeasurementEnum::Type type) {
        measurement.setRBW(15.0);
        measurement.setType(type);
    }
    DistortionMeasurements measurement;
    void run(const double* frame) {
        benchmark::DoNotOptimize(measurement.computeDistortion(frame, frame, channelRange).thd);
    }
};

struct Noise {
    Noise() {
        noise.setRBW(15.0);
        noise.setNumSignals(1);
        noise.setNumChannels(0, 1);
        noise.setFrameSize(0, numPoints);
        noise.setPhaseNoiseFrequencyOffset({100.0, 300.0, 1000.0, 3000.0, 10000.0});
    }
    PhaseNoise noise;
    void run(const double* frame) { benchmark::DoNotOptimize(noise.computePhaseNoise(0, frame, frame).maxNumPoints); }
};

struct Mask {
    Mask() {
        tester.setEnabledMasks(SpectralMaskTesterEnum::EnabledMasks::upper);
        tester.setUpperMask({-30000.0, 30000.0, 50.0, 50.0});
    }
    SpectralMaskTester tester;
    void run(const double* frame) {
        if (!tester.isLocked()) {
            tester.setup(frame, 1, numPoints, {1}, {0});
        }
        benchmark::DoNotOptimize(tester.performMaskTest(frame, 0, numPoints, true)->numPassedTests);
    }
};

template <class Measurement>
void againstTransform(benchmark::State& state, Measurement measurement) {
    Frames frames;
    BareTransform transform;
    bench::compare(
        state, numPoints, [&] { measurement.run(frames.next()); }, [&] { transform.run(); });
}

struct AllFive {
    Peaks peaks;
    Channels channels{ChannelMeasurementEnum::Type::occupiedBandwidth};
    Distortion distortion{DistortionMeasurementEnum::Type::harmonic};
    Noise noise;
    Mask mask;
    void run(const double* frame) {
        peaks.run(frame);
        channels.run(frame);
        distortion.run(frame);
        noise.run(frame);
        mask.run(frame);
    }
};

void peaks(benchmark::State& state) {
    againstTransform(state, Peaks());
}
void occupiedBandwidth(benchmark::State& state) {
    againstTransform(state, Channels(ChannelMeasurementEnum::Type::occupiedBandwidth));
}
void adjacentChannels(benchmark::State& state) {
    againstTransform(state, Channels(ChannelMeasurementEnum::Type::acpr));
}
void harmonicDistortion(benchmark::State& state) {
    againstTransform(state, Distortion(DistortionMeasurementEnum::Type::harmonic));
}
void intermodulation(benchmark::State& state) {
    againstTransform(state, Distortion(DistortionMeasurementEnum::Type::intermodulation));
}
void phaseNoise(benchmark::State& state) {
    againstTransform(state, Noise());
}
void mask(benchmark::State& state) {
    againstTransform(state, Mask());
}
void allFive(benchmark::State& state) {
    againstTransform(state, AllFive());
}

double plainSum(const double* data, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += data[i];
    }
    return sum;
}

/// Ratio and time a bin over sizes, numbers of peaks wanted and minimum distances: near-linear if they hardly grow with
/// the size. As many peaks wanted as there are bins make every candidate count: all are ranked, and those that the
/// stronger ones drop are walked over. Fewer let the search stop early, without a look at most candidates; their number
/// is that of the noise's maxima all the same.
void peaksOfNoise(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const auto wanted = std::min(count, static_cast<std::size_t>(state.range(1)));
    const std::vector<double> levels = noiseLevels(2 * count, 5);
    PeakFinder finder(-1e9, wanted, static_cast<double>(state.range(2)), 0.0);
    PeakFinder all(-1e9, count, 1.0, 0.0);
    std::size_t start = 0;
    state.counters["candidates"] =
        static_cast<double>(all.findPeaks(levels.data(), {0, count}, PeakSelectionLastMaximum).numPeaks);
    state.counters["found"] =
        static_cast<double>(finder.findPeaks(levels.data(), {0, count}, PeakSelectionLastMaximum).numPeaks);
    bench::compare(
        state, count,
        [&] {
            start = (start + 7919) % count;
            const auto& found = finder.findPeaks(levels.data(), {start, start + count}, PeakSelectionLastMaximum);
            benchmark::DoNotOptimize(found.numPeaks);
        },
        [&] { benchmark::DoNotOptimize(plainSum(levels.data() + start, count)); });
}

/// The two arrays read and no more: sums of both in lanes.
void maskAgainstReading(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<double> frame(count);
    for (std::size_t k = 0; k < count; ++k) {
        frame[k] = static_cast<double>(k);
    }
    const std::vector<double> levels = noiseLevels(count, 9);
    frame.insert(frame.end(), levels.begin(), levels.end());
    SpectralMaskTester tester;
    tester.setEnabledMasks(SpectralMaskTesterEnum::EnabledMasks::upper);
    tester.setUpperMask({0.0, static_cast<double>(count), 50.0, 50.0});
    tester.setup(frame.data(), 1, count, {1}, {0});
    const std::vector<double> line(count, 50.0);
    const auto read = [&] {
        double lanes[8] = {};
        const double* bins = frame.data() + count;
        for (std::size_t k = 0; k + 8 <= count; k += 8) {
            for (std::size_t lane = 0; lane < 8; ++lane) {
                lanes[lane] += bins[k + lane] + line[k + lane];
            }
        }
        benchmark::DoNotOptimize(lanes);
    };
    bench::compare(
        state, count,
        [&] { benchmark::DoNotOptimize(tester.performMaskTest(frame.data(), 0, count, true)->numPassedTests); }, read);
}

BENCHMARK(peaks)->UseManualTime();
BENCHMARK(occupiedBandwidth)->UseManualTime();
BENCHMARK(adjacentChannels)->UseManualTime();
BENCHMARK(harmonicDistortion)->UseManualTime();
BENCHMARK(intermodulation)->UseManualTime();
BENCHMARK(phaseNoise)->UseManualTime();
BENCHMARK(mask)->UseManualTime();
BENCHMARK(allFive)->UseManualTime();
BENCHMARK(peaksOfNoise)
    ->ArgNames({"bins", "wanted", "distance"})
    ->ArgsProduct({{1000, 10000, 100000, 1000000}, {10, 1000000}, {20}})
    ->ArgsProduct({{1000, 1000000}, {1000000}, {2, 200}})
    ->UseManualTime();
BENCHMARK(maskAgainstReading)->Arg(4096)->Arg(65536)->Arg(1000000)->UseManualTime();

}  // namespace
