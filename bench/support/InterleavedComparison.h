#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

/// The 25 %, 50 % and 75 % points of times.
struct Quartiles {
    double low, median, high;
};

inline Quartiles quartilesOf(std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    const std::size_t count = times.size();
    return {times[count / 4], times[count / 2], times[3 * count / 4]};
}

/// Runs contestant and yardstick by turns, so that both see the same machine, and reports the contestant's time a
/// sample, the ratio of the two medians, and the spread of the contestant's times (quartile distance over median).
template <class Contestant, class Yardstick>
void compare(benchmark::State& state, std::size_t samples, Contestant contestant, Yardstick yardstick) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> contestantTimes;
    std::vector<double> yardstickTimes;
    for (auto _ : state) {
        const auto start = Clock::now();
        contestant();
        const auto middle = Clock::now();
        yardstick();
        const auto stop = Clock::now();
        contestantTimes.push_back(std::chrono::duration<double>(middle - start).count());
        yardstickTimes.push_back(std::chrono::duration<double>(stop - middle).count());
        state.SetIterationTime(contestantTimes.back());
    }
    const Quartiles ours = quartilesOf(contestantTimes);
    const Quartiles theirs = quartilesOf(yardstickTimes);
    const double perSample = 1e9 / static_cast<double>(samples);
    state.counters["ns_a_sample"] = ours.median * perSample;
    state.counters["yardstick_ns"] = theirs.median * perSample;
    state.counters["ratio"] = ours.median / theirs.median;
    state.counters["spread"] = (ours.high - ours.low) / ours.median;
}

}  // namespace bench
