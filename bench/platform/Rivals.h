#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace bench {

/// Seconds that one call of `work` takes.
template <class Work>
double secondsOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double quantile(std::vector<double> values, double part) {
    const auto rank = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + rank, values.end());
    return values[static_cast<std::size_t>(rank)];
}

/// Times `subject` and its yardstick `rival` in turn and reports, as counters:
///   ratio      median over the rounds of the time of the subject over that of the rival next to it
///   spread     how far the quartiles of these ratios lie apart
///   ns, rival  fastest round of each, in nanoseconds for one of the `items` that a call handles
/// Other work on the machine falls on both alike, so that ratios hold where times do not.
template <class Subject, class Rival>
void compare(benchmark::State& state, std::size_t items, Subject&& subject, Rival&& rival) {
    std::vector<double> subjectTimes;
    std::vector<double> rivalTimes;
    std::vector<double> ratios;
    subject();
    rival();
    for (auto _ : state) {
        subjectTimes.push_back(secondsOf(subject));
        rivalTimes.push_back(secondsOf(rival));
        ratios.push_back(subjectTimes.back() / rivalTimes.back());
        state.SetIterationTime(subjectTimes.back());
    }
    const double perItem = 1e9 / static_cast<double>(items);
    state.counters["ratio"] = quantile(ratios, 0.5);
    state.counters["spread"] = quantile(ratios, 0.75) - quantile(ratios, 0.25);
    state.counters["ns"] = quantile(subjectTimes, 0) * perItem;
    state.counters["rival"] = quantile(rivalTimes, 0) * perItem;
}

}  // namespace bench
