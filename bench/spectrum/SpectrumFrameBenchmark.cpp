// A frame that completes no update, through the estimator's filter, against copying its samples into the segment
// buffer: what the filter looks up, decides and publishes besides may cost a fifth of the copy.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <vector>

#include "InterleavedComparison.h"
#include "SpectrumBuffer.h"
#include "SpectrumEstimatorFilter.h"
#include "TestClient.h"

namespace {

constexpr std::size_t framesASegment = 16;  // few: both buffers and the transform stay in cache
constexpr std::size_t timedFrames = 14;     // the others of a segment, and its update, go untimed

/// Frames of state.range(0) points of state.range(1) channels.
void frameWithoutUpdate(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const auto points = static_cast<std::size_t>(state.range(0));
    const auto channels = static_cast<std::size_t>(state.range(1));
    testsupport::TestClient client({static_cast<int>(channels)});
    dspwavedecks::SpectrumEstimatorFilter filter;
    filter.tuneImpl(client.setup()
                        .addChar("frequencyResolutionMethod", "window-length")
                        .addChar("window", "rectangular")
                        .addDouble("windowLength", static_cast<double>(framesASegment * points)));
    dspwavedecks::SpectrumBuffer buffer;
    buffer.setup(1, channels, false);
    buffer.setSegmentLength(framesASegment * points);
    buffer.setOverlapPercent(0.0);
    const std::vector<double> frame(points * channels, 0.5);
    std::vector<double> out;
    filter.setInputLength(frame.size());
    const auto feedFilter = [&](std::size_t frames) {
        std::size_t updates = 0;
        for (std::size_t i = 0; i < frames; ++i) {
            filter.filterImpl(frame.data(), out, 0);
            updates += out.empty() ? 0 : 1;
        }
        return updates;
    };
    const auto feedBuffer = [&](std::size_t frames) {
        for (std::size_t i = 0; i < frames; ++i) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                buffer.addData(frame.data() + channel * points, channel, points, channels, false);
            }
        }
    };
    // One round untimed: what follows finds its memory.
    feedFilter(framesASegment);
    feedBuffer(framesASegment);
    buffer.clear();
    std::vector<double> filterTimes;
    std::vector<double> bufferTimes;
    bool isFilterFirst = false;
    for (auto _ : state) {
        std::size_t updates = 0;
        const auto timeFilter = [&] {
            const auto start = Clock::now();
            updates = feedFilter(timedFrames);
            filterTimes.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        };
        const auto timeBuffer = [&] {
            const auto start = Clock::now();
            feedBuffer(timedFrames);
            bufferTimes.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        };
        // By turns, since whoever comes first finds its code and the frame out of the first cache.
        isFilterFirst = !isFilterFirst;
        if (isFilterFirst) {
            timeFilter();
        }
        timeBuffer();
        if (!isFilterFirst) {
            timeFilter();
        }
        state.SetIterationTime(filterTimes.back());
        if (updates != 0 || feedFilter(framesASegment - timedFrames) != 1) {
            state.SkipWithError("the updates do not come where they should");
            break;
        }
        feedBuffer(framesASegment - timedFrames);
        buffer.clear();
    }
    const bench::Quartiles ours = bench::quartilesOf(filterTimes);
    const bench::Quartiles copy = bench::quartilesOf(bufferTimes);
    state.counters["ns_a_frame"] = ours.median * 1e9 / timedFrames;
    state.counters["copy_ns"] = copy.median * 1e9 / timedFrames;
    state.counters["ratio"] = ours.median / copy.median;
    state.counters["spread"] = (ours.high - ours.low) / ours.median;
}

}  // namespace

BENCHMARK(frameWithoutUpdate)->ArgsProduct({{256, 1024, 4096}, {1, 8}})->UseManualTime()->Iterations(2000);
