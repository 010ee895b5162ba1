#pragma once

#include "Test.h"
#include "TimeDomainTriggerController.h"

namespace trigger_test {

struct Point {
    double time, value;
};

/// Straight lines between the points, sampled from the first point to the last.
inline std::vector<Point> sampled(const std::vector<Point>& corners, double interval) {
    std::vector<Point> samples;
    std::size_t segment = 0;
    for (int i = 0; corners.front().time + i * interval <= corners.back().time + 1e-9; ++i) {
        const double time = corners.front().time + i * interval;
        while (segment + 2 < corners.size() && corners[segment + 1].time < time) {
            ++segment;
        }
        const Point& a = corners[segment];
        const Point& b = corners[segment + 1];
        samples.push_back({time, a.value + (b.value - a.value) * (time - a.time) / (b.time - a.time)});
    }
    return samples;
}

struct Window {
    double start, end;
    bool operator==(const Window&) const = default;
};

/// Feeds the samples in frames, sample by sample or each frame as a whole, and asks for windows behind each frame until
/// none is due.
inline std::vector<Window> windowsOf(deckutil::TimeDomainTriggerController& engine, const std::vector<Point>& samples,
                                     double timeRange, std::size_t frameSize = 1, bool asWhole = false) {
    std::vector<Window> windows;
    std::vector<double> times;
    std::vector<double> values;
    for (const Point& sample : samples) {
        times.push_back(sample.time);
        values.push_back(sample.value);
    }
    for (std::size_t begin = 0; begin < samples.size(); begin += frameSize) {
        const std::size_t end = std::min(begin + frameSize, samples.size());
        for (std::size_t i = begin; i < end && !asWhole; ++i) {
            engine.processSample(times[i], values[i], times[i], timeRange);
        }
        if (asWhole) {
            engine.processSamples(times.data() + begin, values.data() + begin, end - begin, timeRange);
        }
        for (;;) {
            Window window{};
            engine.getTriggerWindow(0.0, samples[end - 1].time, timeRange, false, window.start, window.end);
            if (!std::isfinite(window.start)) {
                break;
            }
            windows.push_back(window);
        }
    }
    return windows;
}

/// Compares the starts of windows with times of a few seconds, known but for the rounding of a few sums.
inline void expectStarts(const std::vector<Window>& windows, const std::vector<double>& starts) {
    ASSERT_EQ(windows.size(), starts.size());
    for (std::size_t i = 0; i < starts.size(); ++i) {
        EXPECT_NEAR(windows[i].start, starts[i], 1e-12) << i;
    }
}

}  // namespace trigger_test
