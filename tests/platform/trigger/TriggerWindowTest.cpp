// Which trigger points count, how the window is cut around them, and when it is handed out.
#include "TriggerWaveforms.h"

using namespace deckutil;
using namespace trigger_test;

namespace {

using Engine = TimeDomainTriggerController;

/// A square wave of 1 Hz sampled 100 times a second, from -1 to 1: it rises through 0 half an interval before each
/// whole second but the first.
std::vector<Point> squareWave(int seconds, double from = 0.0) {
    std::vector<Point> samples;
    for (int i = 0; i < 100 * seconds; ++i) {
        samples.push_back({from + i / 100.0, i % 100 < 50 ? 1.0 : -1.0});
    }
    return samples;
}

Engine risingEdge(TDTC::ModeEnum mode = TDTC::Normal) {
    Engine engine;
    engine.setMode(mode);
    engine.setAutoLevel(false);
    engine.setPosition(0.0);
    return engine;
}

// Frames of one sample are taken sample by sample, longer ones in stretches that are passed over whole: from slow
// signals to white noise, for any condition, they must agree to the bit, and so do what is decided behind gaps and
// steps back.
TEST(TriggerWindowTest, FramesOfAnySizeGiveTheSameWindows) {
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0.0, 1.0);
    const auto oneOf = [&](std::initializer_list<double> values) { return values.begin()[random() % values.size()]; };
    std::size_t found = 0;
    for (int run = 0; run < 400; ++run) {
        std::vector<Point> samples;
        const double smoothing = oneOf({1.0, 0.3, 0.03});
        const bool hasGaps = run % 5 == 4;
        double value = 0.0;
        double time = 0.0;
        for (int i = 0; i < 3000; ++i) {
            value += smoothing * (noise(random) - value);
            time += hasGaps && random() % 500 == 0 ? -0.3 : 0.001;
            samples.push_back({time, hasGaps && random() % 200 == 0 ? nan : value});
        }
        Engine settings;
        settings.setType(static_cast<TDTC::TypeEnum>(run % 6));
        settings.setMode(run % 7 == 0 ? TDTC::Auto : run % 7 == 1 ? TDTC::Once : TDTC::Normal);
        settings.setPolarity(static_cast<TDTC::PolarityEnum>(static_cast<int>(random() % 3) - 1));
        settings.setAutoLevel(random() % 2 == 0);
        settings.setHysteresis(std::sqrt(smoothing) * oneOf({0.0, 0.1, 0.8}));
        settings.setUpperLevel(std::sqrt(smoothing) * oneOf({0.5, 0.2, -0.3}));
        settings.setLowerLevel(std::sqrt(smoothing) * oneOf({-0.5, 0.0, 0.2}));
        settings.setMinTime(oneOf({0.0, 0.002, 0.012, 0.05}));
        settings.setMaxTime(oneOf({1.0, 0.015}));
        settings.setTimeout(oneOf({0.0, 0.002, 0.02, 0.1}));
        settings.setHoldoff(oneOf({0.0, 0.11}));
        settings.setPosition(oneOf({0.0, 0.5}));
        const double timeRange = oneOf({0.004, 0.1});
        settings.setDelay(timeRange > 0.01 ? oneOf({0.0, -0.04}) : 0.0);  // fewer windows a frame than the ring holds
        std::vector<Window> first;
        for (const std::size_t frameSize : {1u, 17u, 256u, 3000u}) {
            Engine bySample = settings;
            Engine asWhole = settings;
            const std::vector<Window> expected = windowsOf(bySample, samples, timeRange, frameSize);
            found += expected.size();
            EXPECT_EQ(windowsOf(asWhole, samples, timeRange, frameSize, true), expected) << run << ", " << frameSize;
            first = frameSize == 1 ? expected : first;
            EXPECT_TRUE(hasGaps || expected == first) << run << ", frames of " << frameSize;
        }
    }
    EXPECT_GT(found, 4000u);
}

// The engine passes over most samples by bounds, and over those in a hold-off by sides alone. Here each sample is
// looked at: every crossing by its definition, and of these the ones that find the engine armed.
TEST(TriggerWindowTest, NoEdgeIsMissedAndNoneInvented) {
    std::mt19937 random(9);
    std::normal_distribution<double> noise(0.0, 1.0);
    constexpr double hysteresis = 0.3;
    for (int run = 0; run < 100; ++run) {
        const double smoothing = 0.02 * (1 + run % 50);
        const double timeRange = 0.001 * (1 + run % 37);
        const double holdoff = run % 3 == 0 ? 0.02 : 0.0;
        std::vector<Point> samples;
        double value = 0.0;
        for (int i = 0; i < 2000; ++i) {
            value += smoothing * (noise(random) - value);
            samples.push_back({i / 1000.0, value});
        }
        Values expected;
        bool wasLow = false;
        double armedFrom = 0.0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            if (wasLow && samples[i].value >= 0.0) {
                const Point& a = samples[i - 1];
                const double time =
                    a.time + (samples[i].time - a.time) * (0.0 - a.value) / (samples[i].value - a.value);
                if (time >= armedFrom) {
                    expected.push_back(time);
                    armedFrom = std::max(time + timeRange, time + holdoff);
                }
            }
            wasLow = samples[i].value <= -hysteresis || (wasLow && samples[i].value < 0.0);
        }
        while (!expected.empty() && expected.back() + timeRange > samples.back().time) {
            expected.pop_back();  // not complete
        }
        Engine engine = risingEdge();
        engine.setHysteresis(hysteresis);
        engine.setHoldoff(holdoff);
        expectStarts(windowsOf(engine, samples, timeRange, 1 + static_cast<std::size_t>(run)), expected);
    }
}

TEST(TriggerWindowTest, OneWindowAtATimeHoldOffAndDelay) {
    const struct {
        const char* what;
        double timeRange, position, delay, holdoff;
        Values starts;
    } rows[] = {
        {"each edge", 0.5, 0.0, 0.0, 0.0, {0.995, 1.995, 2.995, 3.995}},
        {"edges inside the window don't count", 1.2, 0.0, 0.0, 0.0, {0.995, 2.995}},
        {"the stretch before it does", 1.2, 0.5, 0.0, 0.0, {0.395, 1.395, 2.395, 3.395}},
        {"hold-off from trigger to trigger", 0.5, 0.0, 0.0, 1.5, {0.995, 2.995}},
        {"hold-off met exactly by two periods less a little", 0.5, 0.0, 0.0, 1.999, {0.995, 2.995}},
        {"delay moves the window", 0.5, 0.0, 0.25, 0.0, {1.245, 2.245, 3.245, 4.245}},
        {"a window that would begin before the first sample doesn't count", 2.6, 0.6, 0.0, 0.0, {0.435}},
        {"nor one that a delay moves there", 0.5, 0.0, -1.5, 0.0, {0.495, 1.495, 2.495}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Engine engine = risingEdge();
        engine.setPosition(row.position);
        engine.setDelay(row.delay);
        engine.setHoldoff(row.holdoff);
        const auto windows = windowsOf(engine, squareWave(5), row.timeRange, 64);
        expectStarts(windows, row.starts);
        for (const Window& window : windows) {
            EXPECT_NEAR(window.end - window.start, row.timeRange, 1e-12);
        }
    }
}

// A window that waits for its end is cut anew where the settings have changed: the trigger must not stay blind up to
// the end that it had before.
TEST(TriggerWindowTest, ShorterSpansAndDelaysArmTheTriggerAgain) {
    for (const double delay : {0.0, 100.0}) {
        Engine engine = risingEdge();
        engine.setDelay(delay);
        expectStarts(windowsOf(engine, squareWave(2), delay > 0.0 ? 0.2 : 100.0), {});
        engine.setDelay(0.0);
        expectStarts(windowsOf(engine, squareWave(2, 2.0), 0.2, 50), {0.995, 1.995, 2.995});
    }
}

TEST(TriggerWindowTest, OnceFiresOnceUntilArmedAgain) {
    Engine engine = risingEdge(TDTC::Once);
    EXPECT_TRUE(engine.getEnableOnceMode());
    expectStarts(windowsOf(engine, squareWave(5), 0.2, 50), {0.995});
    EXPECT_FALSE(engine.getEnableOnceMode());
    expectStarts(windowsOf(engine, squareWave(3, 5.0), 0.2, 50), {});
    engine.setEnableOnceMode(true);
    // Armed behind the frame that ended at 7.99: the edge at 7.995 comes.
    expectStarts(windowsOf(engine, squareWave(3, 8.0), 0.2, 50), {7.995});
}

TEST(TriggerWindowTest, AutoRunsFreeOnAFlatLineAndNormalWaits) {
    const std::vector<Point> flat = sampled({{0.0, 0.25}, {5.0, 0.25}}, 0.01);
    Engine automatic = risingEdge(TDTC::Auto);
    automatic.setPosition(0.5);
    expectStarts(windowsOf(automatic, flat, 1.0, 33), {0.0, 1.0, 2.0, 3.0, 4.0});
    Engine normal = risingEdge();
    EXPECT_TRUE(windowsOf(normal, flat, 1.0, 33).empty());
    // One free run more, and the picture stands on the edges.
    expectStarts(windowsOf(automatic, squareWave(4, 5.01), 1.0, 33), {5.0, 5.505, 6.505, 7.505});
    Engine off = risingEdge(TDTC::Off);
    EXPECT_TRUE(windowsOf(off, squareWave(4), 0.2, 33).empty());
}

TEST(TriggerWindowTest, AutomaticLevelIsTheMiddleOfTheRange) {
    // From 2 to 6: no level before one time range has passed, then 4, crossed half an interval before each second.
    std::vector<Point> samples = squareWave(6);
    for (Point& sample : samples) {
        sample.value = 4.0 + 2.0 * sample.value;
    }
    Engine engine = risingEdge();
    engine.setAutoLevel(true);
    engine.setLevel(100.0);
    EXPECT_EQ(engine.getLevel(), 100.0);
    expectStarts(windowsOf(engine, samples, 1.2, 10), {1.995, 3.995});
    EXPECT_EQ(engine.getLevel(), 4.0);
    // It follows an offset within two time ranges.
    for (Point& sample : samples) {
        sample.time += 6.0;
        sample.value += 1000.0;
    }
    windowsOf(engine, samples, 1.2, 10);
    EXPECT_EQ(engine.getLevel(), 1004.0);
}

TEST(TriggerWindowTest, WindowsComeWhenTheyAreCompleteOrFlushed) {
    const auto samples = squareWave(3);
    Engine engine = risingEdge();
    engine.setPosition(0.5);
    Window window{};
    const auto request = [&](Engine& asked, double lastTime, bool flush) {
        asked.getTriggerWindow(0.0, lastTime, 0.5, flush, window.start, window.end);
        return std::isfinite(window.start) && std::isfinite(window.end);
    };
    for (std::size_t i = 0; i <= 125; ++i) {
        engine.processSample(samples[i].time, samples[i].value, samples[i].time, 0.5);
        if (i == 110) {  // flushed at 1.1 it is cut, the trigger point at 0.995 in its middle still
            Engine flushed = engine;
            ASSERT_TRUE(request(flushed, samples[i].time, true));
            EXPECT_EQ(window.end, samples[i].time);
            EXPECT_NEAR(0.5 * (window.start + window.end), 0.995, 1e-12);
        }
        EXPECT_EQ(request(engine, samples[i].time, false), i == 125) << i;  // the window ends at 1.245
    }
    EXPECT_NEAR(window.start, 0.745, 1e-12);
    engine.getLastTriggerWindow(window.start, window.end);
    EXPECT_NEAR(window.end, 1.245, 1e-12);
    EXPECT_FALSE(request(engine, samples[125].time, true));
}

TEST(TriggerWindowTest, WindowsNotAskedForAreDroppedAtTheNextSample) {
    Engine engine = risingEdge();
    const auto samples = squareWave(6);
    double start = 0.0;
    double end = 0.0;
    for (const Point& sample : samples) {
        engine.processSample(sample.time, sample.value, sample.time, 0.1);
    }
    engine.getTriggerWindow(0.0, samples.back().time, 0.1, false, start, end);
    EXPECT_NEAR(start, 0.995, 1e-12);
    // The next is that of the frame behind, not those of 1.995 and so on, which nobody asked for.
    expectStarts(windowsOf(engine, squareWave(2, 6.0), 0.1, 200), {5.995, 6.995});
    // A frame with more windows than the ring holds keeps the newest.
    for (const Point& sample : squareWave(2000, 8.0)) {
        engine.processSample(sample.time, sample.value, sample.time, 0.1);
    }
    engine.getTriggerWindow(0.0, 2007.99, 0.1, false, start, end);
    EXPECT_NEAR(start, 2006.995 - 1023.0, 1e-9);
}

TEST(TriggerWindowTest, ChangesOfModeOrConditionAndTimeFallingBackDiscardWhatWaits) {
    const auto samples = squareWave(2);
    for (int change = 0; change < 4; ++change) {
        Engine engine = risingEdge();
        for (std::size_t i = 0; i <= 120; ++i) {
            engine.processSample(samples[i].time, samples[i].value, samples[i].time, 0.5);
        }
        engine.setMode(change == 0 ? TDTC::Auto : TDTC::Normal);
        engine.setPolarity(change == 1 ? TDTC::Negative : TDTC::Positive);
        engine.setType(change == 2 ? TDTC::Timeout : TDTC::Edge);
        engine.processSample(change == 3 ? 0.2 : 1.21, 1.0, 0.0, 0.5);
        Window window{};
        engine.getTriggerWindow(0.0, 1e9, 0.5, false, window.start, window.end);
        EXPECT_FALSE(std::isfinite(window.start) || std::isfinite(window.end)) << change;
    }
    // A simulation that steps back is triggered again where it was before.
    Engine engine = risingEdge();
    expectStarts(windowsOf(engine, samples, 0.5, 7), {0.995});
    expectStarts(windowsOf(engine, samples, 0.5, 7), {0.995});
}

TEST(TriggerWindowTest, MovedLevelsAreNotCrossings) {
    Engine engine = risingEdge();
    engine.setLevel(1.0);
    windowsOf(engine, {{0.0, 0.5}, {0.1, 0.5}}, 0.1);
    engine.setLevel(0.0);  // the signal is above it now, and has crossed nothing
    expectStarts(windowsOf(engine, {{1.0, 0.5}, {1.9, 0.5}, {2.0, -0.5}, {2.1, 0.5}, {2.2, -0.5}}, 0.1), {2.05});
    engine.setType(TDTC::Window);  // begins anew with the next sample, wherever the last one lay
    engine.setLowerLevel(0.1);
    engine.setUpperLevel(1.0);
    expectStarts(windowsOf(engine, {{2.3, 0.5}, {2.4, 0.5}, {2.5, 1.5}, {2.6, 0.5}, {2.8, 0.5}}, 0.1), {2.55});
}

}  // namespace
