// For every type and polarity: waveforms on which it must fire, with the time of the trigger point in closed form, and
// waveforms just outside the condition, on which it must not. All corners lie on samples, so that the sampled waveform
// is the drawn one and the times are exact but for rounding.
#include <gtest/gtest.h>

#include <limits>
#include <numbers>

#include "TriggerWaveforms.h"

using namespace deckutil;
using trigger_test::Point;

namespace {

using Engine = TimeDomainTriggerController;

struct Case {
    const char* what;
    TDTC::TypeEnum type;
    TDTC::PolarityEnum polarity;
    std::function<void(Engine&)> set;
    std::vector<Point> corners;
    std::vector<double> fires;  // s
};

void level(Engine& engine, double value, double hysteresis = 0.0) {
    engine.setLevel(value);
    engine.setHysteresis(hysteresis);
}
void duration(Engine& engine, double least, double most, double low = 0.5, double high = 1.5) {
    engine.setLevel(0.5);
    engine.setLowerLevel(low);
    engine.setUpperLevel(high);
    engine.setMinTime(least);
    engine.setMaxTime(most);
}

const std::vector<Point> triangle{{0, 0}, {1, 2}, {2, 0}, {3, 2}, {4, 0}};
const std::vector<Point> upsideDown{{0, 2}, {1, 0}, {2, 2}, {3, 0}, {4, 2}};
// The level 0.5 is crossed at 0.5 and 2.5: a positive pulse of 2 s; then at 4.5: a negative one of 2 s.
const std::vector<Point> pulses{{0, 0}, {1, 1}, {2, 1}, {3, 0}, {4, 0}, {5, 1}, {6, 1}};
// A runt that peaks at 1, a whole pulse, a runt from above that reaches 1 only.
const std::vector<Point> runts{{0, 0}, {1, 1}, {2, 0}, {4, 2}, {5, 2}, {6, 1}, {7, 2}, {9, 0}};
// Up, in 2 s from 0.5 to 1.5 between 0.5 and 1.5; down in half that.
const std::vector<Point> ramps{{0, 0}, {2, 2}, {3, 2}, {4, 0}, {5, 0}};
const std::vector<Point> twoSteps{{0, 0}, {0.75, 1.5}, {1.75, 0.5}, {2.75, 0.5}, {3.75, 1.5}, {4.75, 1.5}};

const std::vector<Case> cases{
    {"edge up", TDTC::Edge, TDTC::Positive, [](Engine& e) { level(e, 0.7); }, triangle, {0.35, 2.35}},
    {"edge down", TDTC::Edge, TDTC::Negative, [](Engine& e) { level(e, 0.7); }, triangle, {1.65, 3.65}},
    {"edge either", TDTC::Edge, TDTC::Either, [](Engine& e) { level(e, 0.7); }, triangle, {0.35, 1.65, 2.35, 3.65}},
    {"level just above the peak", TDTC::Edge, TDTC::Either, [](Engine& e) { level(e, 2.001); }, triangle, {}},
    {"level reached by the peak", TDTC::Edge, TDTC::Positive, [](Engine& e) { level(e, 2.0); }, triangle, {1.0, 3.0}},
    {"begins above: no edge", TDTC::Edge, TDTC::Positive, [](Engine& e) { level(e, 1.0); }, upsideDown, {1.5, 3.5}},
    // From 1 the dip to 0.75 is 0.25 below the level: with more hysteresis than that the second rise doesn't count.
    {"hysteresis met",
     TDTC::Edge,
     TDTC::Positive,
     [](Engine& e) { level(e, 1.0, 0.25); },
     {{0, 0}, {1, 2}, {2, 0.75}, {3, 2}},
     {0.5, 2.2}},
    {"hysteresis missed",
     TDTC::Edge,
     TDTC::Positive,
     [](Engine& e) { level(e, 1.0, 0.26); },
     {{0, 0}, {1, 2}, {2, 0.75}, {3, 2}},
     {0.5}},
    {"hysteresis missed, falling",
     TDTC::Edge,
     TDTC::Negative,
     [](Engine& e) { level(e, 1.0, 0.26); },
     {{0, 2}, {1, 0}, {2, 1.25}, {3, 0}},
     {0.5}},

    {"positive pulse", TDTC::PulseWidth, TDTC::Positive, [](Engine& e) { duration(e, 1.9, 2.1); }, pulses, {2.5}},
    {"negative pulse", TDTC::PulseWidth, TDTC::Negative, [](Engine& e) { duration(e, 1.9, 2.1); }, pulses, {4.5}},
    {"either pulse", TDTC::PulseWidth, TDTC::Either, [](Engine& e) { duration(e, 1.9, 2.1); }, pulses, {2.5, 4.5}},
    {"pulse too long", TDTC::PulseWidth, TDTC::Either, [](Engine& e) { duration(e, 0, 1.99); }, pulses, {}},
    {"pulse too short", TDTC::PulseWidth, TDTC::Either, [](Engine& e) { duration(e, 2.01, 9); }, pulses, {}},
    {"pulse whose start was not seen",
     TDTC::PulseWidth,
     TDTC::Either,
     [](Engine& e) { duration(e, 0, 9); },
     {{0, 1}, {1, 0}, {2, 0}},
     {}},
    // Peaks at 0.6: with 0.2 of hysteresis it doesn't come down again; the pulse that counts begins at 3.5.
    {"hump inside the hysteresis",
     TDTC::PulseWidth,
     TDTC::Positive,
     [](Engine& e) {
         duration(e, 0, 9);
         e.setHysteresis(0.2);
     },
     {{0, 0}, {1, 0.6}, {2, 0}, {3, 0}, {4, 1}, {5, 0}},
     {4.5}},

    {"rise in 1 s", TDTC::Transition, TDTC::Positive, [](Engine& e) { duration(e, 0.99, 1.01); }, ramps, {1.5}},
    {"fall in 0.5 s", TDTC::Transition, TDTC::Negative, [](Engine& e) { duration(e, 0.49, 0.51); }, ramps, {3.75}},
    {"either", TDTC::Transition, TDTC::Either, [](Engine& e) { duration(e, 0.49, 1.01); }, ramps, {1.5, 3.75}},
    {"rise too fast", TDTC::Transition, TDTC::Positive, [](Engine& e) { duration(e, 1.01, 9); }, ramps, {}},
    {"rise too slow", TDTC::Transition, TDTC::Positive, [](Engine& e) { duration(e, 0, 0.99); }, ramps, {}},
    // The first rise turns back above the lower level: the transition still began at 0.25.
    {"turns back half way",
     TDTC::Transition,
     TDTC::Positive,
     [](Engine& e) { duration(e, 3.6, 3.7, 0.5, 1.4); },
     {{0, 0}, {0.5, 1}, {1.5, 0.75}, {2.5, 0.75}, {3.5, 1.0}, {4.5, 2.0}},
     {3.9}},
    {"in one sample interval",
     TDTC::Transition,
     TDTC::Positive,
     [](Engine& e) { duration(e, 0.02, 0.03); },
     {{0, 0}, {1, 0}, {1.05, 2}, {2, 2}},
     {1.0375}},

    {"positive runt", TDTC::Runt, TDTC::Positive, [](Engine& e) { duration(e, 0.9, 1.1); }, runts, {1.5}},
    {"negative runt", TDTC::Runt, TDTC::Negative, [](Engine& e) { duration(e, 0.9, 1.1); }, runts, {6.5}},
    {"either runt", TDTC::Runt, TDTC::Either, [](Engine& e) { duration(e, 0.9, 1.1); }, runts, {1.5, 6.5}},
    {"runt too short", TDTC::Runt, TDTC::Either, [](Engine& e) { duration(e, 1.01, 9); }, runts, {}},
    {"reaches the upper level", TDTC::Runt, TDTC::Positive, [](Engine& e) { duration(e, 0, 9, 0.5, 1.0); }, runts, {}},
    {"stops just below", TDTC::Runt, TDTC::Positive, [](Engine& e) { duration(e, 0, 9, 0.5, 1.001); }, runts, {1.5}},
    {"never reaches the lower level",
     TDTC::Runt,
     TDTC::Positive,
     [](Engine& e) { duration(e, 0, 9, 1.01, 1.5); },
     {{0, 0}, {1, 1}, {2, 0}},
     {}},

    {"enters the window",
     TDTC::Window,
     TDTC::Positive,
     [](Engine& e) { duration(e, 0, 9); },
     triangle,
     {0.25, 1.25, 2.25, 3.25}},
    {"leaves the window",
     TDTC::Window,
     TDTC::Negative,
     [](Engine& e) { duration(e, 0, 9); },
     triangle,
     {0.75, 1.75, 2.75, 3.75}},
    {"stays inside", TDTC::Window, TDTC::Either, [](Engine& e) { duration(e, 0, 9, -0.01, 2.01); }, triangle, {}},
    {"stays above", TDTC::Window, TDTC::Either, [](Engine& e) { duration(e, 0, 9, -2, -0.01); }, triangle, {}},
    {"jumps across it",
     TDTC::Window,
     TDTC::Either,
     [](Engine& e) { duration(e, 0, 9); },
     {{0, 0}, {1, 0}, {1.05, 2}, {2, 2}},
     {1.0125, 1.0375}},

    {"high for 1 s",
     TDTC::Timeout,
     TDTC::Positive,
     [](Engine& e) {
         level(e, 0.5);
         e.setTimeout(1.0);
     },
     pulses,
     {1.5, 5.5}},
    {"low for 1 s",
     TDTC::Timeout,
     TDTC::Negative,
     [](Engine& e) {
         level(e, 0.5);
         e.setTimeout(1.0);
     },
     pulses,
     {3.5}},
    {"either for 1 s",
     TDTC::Timeout,
     TDTC::Either,
     [](Engine& e) {
         level(e, 0.5);
         e.setTimeout(1.0);
     },
     pulses,
     {1.5, 3.5, 5.5}},
    {"not as long",
     TDTC::Timeout,
     TDTC::Either,
     [](Engine& e) {
         level(e, 0.5);
         e.setTimeout(2.01);
     },
     pulses,
     {}},
    {"exactly as long",
     TDTC::Timeout,
     TDTC::Negative,
     [](Engine& e) {
         level(e, 0.5);
         e.setTimeout(2.0);
     },
     pulses,
     {4.5}},
    {"no crossing, no timeout",
     TDTC::Timeout,
     TDTC::Either,
     [](Engine& e) {
         level(e, 2.5);
         e.setTimeout(1.0);
     },
     pulses,
     {}},
};

Engine engineFor(const Case& row) {
    Engine engine;
    engine.setMode(TDTC::Normal);
    engine.setAutoLevel(false);
    engine.setType(row.type);
    engine.setPolarity(row.polarity);
    engine.setPosition(0.0);
    row.set(engine);
    return engine;
}

}  // namespace

TEST(TriggerConditionTest, FiresExactlyWhereItMust) {
    for (const Case& row : cases) {
        Engine engine = engineFor(row);
        std::vector<Point> samples = sampled(row.corners, 0.05);
        samples.push_back({samples.back().time + 0.05, samples.back().value});
        const auto windows = windowsOf(engine, samples, 1e-3);
        ASSERT_EQ(windows.size(), row.fires.size()) << row.what;
        for (std::size_t i = 0; i < windows.size(); ++i) {
            EXPECT_NEAR(windows[i].start, row.fires[i], 1e-12) << row.what;  // rounding of sums of a few seconds
        }
    }
}

TEST(TriggerConditionTest, MirroredWaveformWithMirroredPolarityGivesTheSameTimes) {
    for (const Case& row : cases) {
        Engine engine = engineFor(row);
        const double low = engine.getLowerLevel();
        const double single = engine.getLevel();
        // A window is entered and left from either side: it has no mirror image of its polarity.
        engine.setPolarity(row.type == TDTC::Window ? row.polarity : static_cast<TDTC::PolarityEnum>(-row.polarity));
        engine.setLevel(-single);
        engine.setLowerLevel(-engine.getUpperLevel());
        engine.setUpperLevel(-low);
        std::vector<Point> samples = sampled(row.corners, 0.05);
        samples.push_back({samples.back().time + 0.05, samples.back().value});
        for (Point& sample : samples) {
            sample.value = -sample.value;
        }
        const auto windows = windowsOf(engine, samples, 1e-3);
        ASSERT_EQ(windows.size(), row.fires.size()) << row.what;
        for (std::size_t i = 0; i < windows.size(); ++i) {
            EXPECT_NEAR(windows[i].start, row.fires[i], 1e-12) << row.what;
        }
    }
}

TEST(TriggerConditionTest, KnowsCrossingsOfASineToAFractionOfASample) {
    // Near its zero the sine departs from the chord by less than (w dt)^3 / 15: with 20 samples a period the crossing
    // is known to (w dt)^2 / 15 < 0.7 % of a sample.
    const double interval = 1.0 / 20.0;
    std::vector<Point> samples;
    for (int i = 0; i < 400; ++i) {
        const double time = i * interval;
        samples.push_back({time, std::sin(2.0 * std::numbers::pi * (time - 0.137))});
    }
    Engine engine = engineFor(cases.front());
    engine.setLevel(0.0);
    const auto windows = windowsOf(engine, samples, interval);
    ASSERT_EQ(windows.size(), 20u);
    for (std::size_t i = 0; i < windows.size(); ++i) {
        EXPECT_NEAR(windows[i].start, 0.137 + static_cast<double>(i), 0.007 * interval);
    }
}

TEST(TriggerConditionTest, GapsAreNotCrossed) {
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double gap : {notANumber, infinity, -infinity}) {
        Engine engine = engineFor(cases.front());
        engine.setLevel(0.5);
        const std::vector<Point> samples{{0, 0}, {1, gap}, {2, 1}, {3, 1}, {4, 0}, {5, 1}, {notANumber, 0}, {6, 1}};
        const auto windows = windowsOf(engine, samples, 0.25);
        ASSERT_EQ(windows.size(), 1u);
        EXPECT_EQ(windows[0].start, 4.5);
    }
}
