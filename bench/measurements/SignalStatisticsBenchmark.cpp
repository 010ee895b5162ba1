// All statistics of a stretch against the passes they ask for, each written as a plain loop, and the median against a
// copy with two nth-element selections. Contestant and rival run by turns in one loop, so that both see the same
// machine; the ratio of the medians is printed as a counter.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "MedianSelection.h"
#include "SignalStatistics.h"

namespace {

using dspwavedecks::SignalStatistics;

std::vector<double> noise(std::size_t count) {
    std::vector<double> values(count);
    std::uint64_t state = 7;
    for (double& value : values) {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            sum += static_cast<double>(state >> 11) / 0x1p53;
        }
        value = sum;
    }
    return values;
}

struct PlainFigures {
    double minimum, maximum, mean, variance, meanSquare;
};

PlainFigures plainPasses(const double* data, std::size_t length) {
    const auto [minimum, maximum] = std::minmax_element(data, data + length);
    PlainFigures figures{*minimum, *maximum, 0.0, 0.0, 0.0};
    const double count = static_cast<double>(length);
    for (std::size_t i = 0; i < length; ++i) {
        const double x = data[i];
        figures.mean += x;
    }
    figures.mean /= count;
    for (std::size_t i = 0; i < length; ++i) {
        const double x = data[i];
        figures.variance += (x - figures.mean) * (x - figures.mean);
    }
    figures.variance /= count - 1.0;
    for (std::size_t i = 0; i < length; ++i) {
        const double x = data[i];
        figures.meanSquare += x * x;
    }
    figures.meanSquare /= count;
    return figures;
}

bool agree(const PlainFigures& ours, const PlainFigures& plain) {
    return ours.minimum == plain.minimum && ours.maximum == plain.maximum && ours.mean == plain.mean &&
           std::fabs(ours.variance / plain.variance - 1.0) < 1e-12 &&
           std::fabs(ours.meanSquare / plain.meanSquare - 1.0) < 1e-12;
}

bool agree(double ours, double plain) {
    return ours == plain;
}

double plainMedian(const double* data, std::size_t count) {
    std::vector<double> copy(data, data + count);
    const auto lower = copy.begin() + static_cast<std::ptrdiff_t>((count - 1) / 2);
    const auto upper = copy.begin() + static_cast<std::ptrdiff_t>(count / 2);
    std::nth_element(copy.begin(), lower, copy.end());
    std::nth_element(lower, upper, copy.end());
    return (*lower + *upper) * 0.5;
}

/// Stretches of one length at ever other places of a long recording: a repeated one would be learnt by the branch
/// predictor, which flatters every selection.
class Stretches {
public:
    Stretches(std::size_t count, std::int64_t steps) : data(noise(4 * count + 1'000'000)), length(count) {
        for (double& value : data) {
            if (steps != 0) {  // as a recording in so many steps
                value = std::floor(value * static_cast<double>(steps)) / static_cast<double>(steps);
            }
        }
    }
    const double* next() {
        place = (place + 777'777) % (data.size() - length);
        return data.data() + place;
    }

private:
    std::vector<double> data;
    std::size_t length;
    std::size_t place = 0;
};

/// Runs both by turns over the same stretch and reports the ratio of their median times.
template <class Ours, class Rival>
void compare(benchmark::State& state, std::size_t count, std::int64_t steps, Ours ours, Rival rival) {
    using Clock = std::chrono::steady_clock;
    Stretches stretches(count, steps);
    std::vector<double> oursTimes;
    std::vector<double> rivalTimes;
    for (auto _ : state) {
        const double* const data = stretches.next();
        if (!agree(ours(data, count), rival(data, count))) {  // warms the cache for both, too
            state.SkipWithError("the figures differ");
            break;
        }
        const auto start = Clock::now();
        benchmark::DoNotOptimize(ours(data, count));
        const auto middle = Clock::now();
        benchmark::DoNotOptimize(rival(data, count));
        const auto stop = Clock::now();
        oursTimes.push_back(std::chrono::duration<double>(middle - start).count());
        rivalTimes.push_back(std::chrono::duration<double>(stop - middle).count());
        state.SetIterationTime(oursTimes.back());
    }
    const auto median = [](std::vector<double>& times) {
        std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
        return times[times.size() / 2];
    };
    const double oursTime = median(oursTimes);
    state.counters["ns_a_sample"] = oursTime * 1e9 / static_cast<double>(count);
    state.counters["ratio"] = oursTime / median(rivalTimes);
}

void allButTheMedian(benchmark::State& state) {
    SignalStatistics statistics;
    statistics.setComputeMedian(false);
    statistics.setComputeVariance(true);
    statistics.setComputeMeanSquare(true);
    compare(
        state, static_cast<std::size_t>(state.range(0)), 0,
        [&](const double* data, std::size_t count) {
            const auto& stats = statistics.computeSignalStatistics(data, {0, count}, dspwavedecks::MinMaxLastMaximum);
            return PlainFigures{stats.yMin, stats.yMax, stats.mean, stats.variance, stats.meanSquare};
        },
        plainPasses);
}

void median(benchmark::State& state) {
    std::vector<double> scratch;
    compare(
        state, static_cast<std::size_t>(state.range(0)), state.range(1),
        [&](const double* data, std::size_t count) { return dspwavedecks::selectMedian(data, count, scratch); },
        plainMedian);
}

}  // namespace

BENCHMARK(allButTheMedian)->Arg(1024)->Arg(5000)->Arg(65536)->Arg(1000003)->UseManualTime();
BENCHMARK(median)->ArgsProduct({{1024, 5000, 65536, 1000003}, {0, 30, 8192}})->UseManualTime();
