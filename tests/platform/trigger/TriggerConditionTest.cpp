// For every type and polarity: waveforms on which it must fire, with the time of the trigger point in closed form, and
// waveforms just outside the condition, on which it must not. All corners lie on samples, so that the sampled waveform
// is the drawn one and the times are exact but for rounding.
#include "CrossingTimes.h"
#include "TriggerWaveforms.h"

using namespace deckutil;
using trigger_test::Point;

namespace {

using Corners = std::vector<Point>;

struct Settings {
    double level = 0.5, hysteresis = 0.0;
    double low = 0.5, high = 1.5, least = 0.0, most = 9.0;
    double timeout = 1.0;
};

struct Case {
    TDTC::TypeEnum type;
    int polarity;
    Settings settings;
    Corners corners;
    std::vector<double> fires;  // s
};

const Corners triangle{{0, 0}, {1, 2}, {2, 0}, {3, 2}, {4, 0}};
const Corners dips{{0, 0}, {1, 2}, {2, 0.75}, {3, 2}};  // 0.25 below 1, after 2
const Corners humps{{0, 2}, {1, 0}, {2, 1.25}, {3, 0}};
// The level 0.5 is crossed at 0.5 and 2.5: a positive pulse of 2 s; then at 4.5: a negative one of 2 s.
const Corners pulses{{0, 0}, {1, 1}, {2, 1}, {3, 0}, {4, 0}, {5, 1}, {6, 1}};
// A runt that peaks at 1, a whole pulse, a runt from above that reaches 1 only.
const Corners runts{{0, 0}, {1, 1}, {2, 0}, {4, 2}, {5, 2}, {6, 1}, {7, 2}, {9, 0}};
const Corners ramps{{0, 0}, {2, 2}, {3, 2}, {4, 0}, {5, 0}};  // 1 s up between 0.5 and 1.5, 0.5 s down
const Corners jump{{0, 0}, {1, 0}, {1.05, 2}, {2, 2}};        // within one sample interval
const Corners turning{{0, 0}, {0.5, 1}, {1.5, 0.75}, {2.5, 0.75}, {3.5, 1}, {4.5, 2}};

using namespace TDTC;
const Case cases[] = {
    {Edge, 1, {.level = 0.7}, triangle, {0.35, 2.35}},
    {Edge, -1, {.level = 0.7}, triangle, {1.65, 3.65}},
    {Edge, 0, {.level = 0.7}, triangle, {0.35, 1.65, 2.35, 3.65}},
    {Edge, 0, {.level = 2.001}, triangle, {}},
    {Edge, 1, {.level = 2.0}, triangle, {1, 3}},               // reached is crossed
    {Edge, 1, {.level = 1}, {{0, 2}, {1, 0}, {2, 2}}, {1.5}},  // to begin above is no edge
    {Edge, 1, {.level = 1, .hysteresis = 0.25}, dips, {0.5, 2.2}},
    {Edge, 1, {.level = 1, .hysteresis = 0.26}, dips, {0.5}},
    {Edge, -1, {.level = 1, .hysteresis = 0.26}, humps, {0.5}},
    {PulseWidth, 1, {.least = 1.9, .most = 2.1}, pulses, {2.5}},
    {PulseWidth, -1, {.least = 1.9, .most = 2.1}, pulses, {4.5}},
    {PulseWidth, 0, {.least = 1.9, .most = 2.1}, pulses, {2.5, 4.5}},
    {PulseWidth, 0, {.most = 1.99}, pulses, {}},
    {PulseWidth, 0, {.least = 2.01}, pulses, {}},
    {PulseWidth, 0, {}, {{0, 1}, {1, 0}, {2, 0}}, {}},  // its start was not seen
    // A hump that does not clear the hysteresis is no pulse and does not begin the next one.
    {PulseWidth, 1, {.hysteresis = 0.2}, {{0, 0}, {1, 0.6}, {2, 0}, {3, 0}, {4, 1}, {5, 0}}, {4.5}},
    {Transition, 1, {.least = 0.99, .most = 1.01}, ramps, {1.5}},
    {Transition, -1, {.least = 0.49, .most = 0.51}, ramps, {3.75}},
    {Transition, 0, {.least = 0.49, .most = 1.01}, ramps, {1.5, 3.75}},
    {Transition, 1, {.least = 1.01}, ramps, {}},
    {Transition, 1, {.most = 0.99}, ramps, {}},
    {Transition, 1, {.high = 1.4, .least = 3.6, .most = 3.7}, turning, {3.9}},  // turns back above the lower level
    {Transition, 1, {.least = 0.02, .most = 0.03}, jump, {1.0375}},
    {Runt, 1, {.least = 0.9, .most = 1.1}, runts, {1.5}},
    {Runt, -1, {.least = 0.9, .most = 1.1}, runts, {6.5}},
    {Runt, 0, {.least = 0.9, .most = 1.1}, runts, {1.5, 6.5}},
    {Runt, 0, {.least = 1.01}, runts, {}},
    {Runt, 1, {.high = 1.0}, runts, {}},  // reaches the upper level
    {Runt, 1, {.high = 1.001}, runts, {1.5}},
    {Runt, 1, {.low = 1.01}, {{0, 0}, {1, 1}, {2, 0}}, {}},
    {Window, 1, {}, triangle, {0.25, 1.25, 2.25, 3.25}},
    {Window, -1, {}, triangle, {0.75, 1.75, 2.75, 3.75}},
    {Window, 0, {.low = -0.01, .high = 2.01}, triangle, {}},  // stays inside
    {Window, 0, {.low = -2, .high = -0.01}, triangle, {}},
    {Window, 0, {}, jump, {1.0125, 1.0375}},
    {Timeout, 1, {}, pulses, {1.5, 5.5}},
    {Timeout, -1, {}, pulses, {3.5}},
    {Timeout, 0, {}, pulses, {1.5, 3.5, 5.5}},
    {Timeout, 0, {.timeout = 2.01}, pulses, {}},
    {Timeout, -1, {.timeout = 2.0}, pulses, {4.5}},
    {Timeout, 0, {.level = 2.5}, pulses, {}},  // no crossing, no timeout
};

/// An engine that fires wherever the condition is fulfilled; sign -1 for the condition's mirror image.
TimeDomainTriggerController engineFor(const Case& row, double sign) {
    TimeDomainTriggerController engine;
    engine.setMode(TDTC::Normal);
    engine.setAutoLevel(false);
    engine.setPosition(0.0);
    engine.setType(row.type);
    // A window is entered and left from either side: its polarity has no mirror image.
    const int polarity = row.type == TDTC::Window ? row.polarity : row.polarity * static_cast<int>(sign);
    engine.setPolarity(static_cast<TDTC::PolarityEnum>(polarity));
    engine.setLevel(sign * row.settings.level);
    engine.setHysteresis(row.settings.hysteresis);
    engine.setLowerLevel(sign > 0 ? row.settings.low : -row.settings.high);
    engine.setUpperLevel(sign > 0 ? row.settings.high : -row.settings.low);
    engine.setMinTime(row.settings.least);
    engine.setMaxTime(row.settings.most);
    engine.setTimeout(row.settings.timeout);
    return engine;
}

TEST(TriggerConditionTest, FiresExactlyWhereItMustAndOnTheMirroredWaveformToo) {
    for (const double sign : {1.0, -1.0}) {
        for (std::size_t index = 0; index < std::size(cases); ++index) {
            SCOPED_TRACE(index);
            auto engine = engineFor(cases[index], sign);
            std::vector<Point> samples = sampled(cases[index].corners, 0.05);
            samples.push_back({samples.back().time + 0.05, samples.back().value});
            for (Point& sample : samples) {
                sample.value *= sign;
            }
            expectStarts(windowsOf(engine, samples, 1e-3), cases[index].fires);
        }
    }
}

TEST(TriggerConditionTest, GapsAreNotCrossed) {
    for (const double gap : {nan, infinity, -infinity}) {
        auto engine = engineFor({Edge, 1, {}, {}, {}}, 1.0);
        const std::vector<Point> samples{{0, 0}, {1, gap}, {2, 1}, {4, 0}, {5, 1}, {6, 0}, {nan, 0}, {7, 1}};
        expectStarts(windowsOf(engine, samples, 0.25), {4.5});
    }
}

TEST(TriggerConditionTest, BlocksAreTakenAlikeWithEachInstructionSet) {
    const LevelBounds bounds{-1.0, 0.0, 2.0};
    for (const InstructionSet set : {InstructionSet::portable, InstructionSet::avx2}) {
        for (std::size_t n = 0; n <= blockSamples && isSupported(set); ++n) {
            Values values;
            for (std::size_t i = 0; i <= n; ++i) {
                values.push_back(static_cast<double>(i * i % 11) / 2.0 - 2.0);
            }
            const Values times = ramp(0, n + 1, 0.1);
            Values crossings(n);
            crossingTimes(set)(times.data() + 1, values.data() + 1, n, 0.3, crossings.data());
            for (std::size_t i = 0; i < n; ++i) {
                EXPECT_EQ(crossings[i], crossingTime(times[i], values[i], times[i + 1], values[i + 1], 0.3)) << i;
                EXPECT_EQ(countBefore(set)(times.data(), n, times[i]), i);
            }
            const LevelBits bits = levelComparison(set)(values.data(), n, bounds);
            for (std::size_t i = 0; i < blockSamples; ++i) {
                const auto isSet = [i](std::uint64_t samples) { return (samples >> i & 1) != 0; };
                EXPECT_EQ(isSet(bits.isLow), i < n && values[i] <= -1.0) << i;
                EXPECT_EQ(isSet(bits.atMost), i < n && values[i] <= 0.0) << i;
                EXPECT_EQ(isSet(bits.atLeast), i < n && values[i] >= 0.0) << i;
                EXPECT_EQ(isSet(bits.isHigh), i < n && values[i] >= 2.0) << i;
            }
        }
    }
}

}  // namespace
