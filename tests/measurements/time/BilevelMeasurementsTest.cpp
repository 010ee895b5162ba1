// Pulse measurements against closed forms: trapezoids, a second-order step response, histograms counted by the plain
// formula, and the rules for what cannot be measured.
#include "BilevelMeasurements.h"

#include "BilevelWorkingSet.h"
#include "Test.h"

namespace {

using Metrics = bilevelMeasurementsStruct;

BilevelMeasurements measuring(double low, double high) {
    BilevelMeasurements bilevel;
    bilevel.setAutoStateLevel(false);
    bilevel.setLowStateLevel(low);
    bilevel.setHighStateLevel(high);
    bilevel.setComputeTransitions(true);
    bilevel.setComputeAberrations(true);
    bilevel.setComputeCycles(true);
    return bilevel;
}

Metrics measure(BilevelMeasurements& bilevel, const Values& times, const Values& values) {
    return *bilevel.computeBilevelMetrics(joined({times, values}).data(), {times.size(), 2 * times.size()});
}

/// Samples one unit of time apart.
Metrics measure(BilevelMeasurements& bilevel, const Values& values) {
    return measure(bilevel, ramp(0, values.size()), values);
}

struct Trapezoid {
    double low, high, riseTime, highTime, fallTime, lowTime;  // s, from corner to corner
    double period() const { return riseTime + highTime + fallTime + lowTime; }
    double operator()(double time) const {
        const double t = time - std::floor(time / period()) * period() - 0.5 * lowTime;
        if (t < 0.0 || t > riseTime + highTime + fallTime) {
            return low;
        }
        const double level = std::min({t / riseTime, 1.0, (riseTime + highTime + fallTime - t) / fallTime});
        return low + (high - low) * level;
    }
};

// The corners lie on samples (multiples of 1/1024 s, exact in binary), so that lines between samples are the waveform's
// own and the closed forms hold but for the rounding of a few hundred operations.
TEST(BilevelMeasurements, trapezoidsReadTheirClosedForms) {
    const Trapezoid shapes[] = {{-1.0, 3.0, 0.125, 0.25, 0.0625, 0.5625}, {0.5, 0.75, 0.25, 0.5, 0.5, 1.0}};
    for (const Trapezoid& shape : shapes) {
        for (const double sign : {1.0, -1.0}) {
            const Values times = ramp(0, static_cast<std::size_t>(3.0 * shape.period() * 1024.0) + 1, 1.0 / 1024.0);
            Values values;
            for (const double time : times) {
                values.push_back(sign * shape(time));
            }
            const bool up = sign > 0;
            const double amplitude = shape.high - shape.low;
            const double width = 0.5 * shape.riseTime + shape.highTime + 0.5 * shape.fallTime;
            const double rest = shape.period() - width;
            const double rise = up ? shape.riseTime : shape.fallTime;
            const double fall = up ? shape.fallTime : shape.riseTime;
            // The stretch behind a transition begins with the first sample in the state, still on the ramp: a rise then
            // is below its level, and a fall above it.
            const auto beyondBound = [](double rampTime) {
                const double step = 100.0 / (rampTime * 1024.0);
                return 2.0 - (step - std::fmod(98.0, step));
            };
            // clang-format off
            const Metrics expected{
                up ? shape.high : -shape.low, up ? shape.low : -shape.high, amplitude,
                3.0, 0.8 * rise, amplitude / rise,    // posEdges, riseTime, posSlewRate
                3.0, 0.8 * fall, -amplitude / fall,   // negEdges, fallTime, negSlewRate
                0.0, 0.0, beyondBound(rise), 0.48 * rise,  // settled from 50 % to 98 % of the ramp
                0.0, beyondBound(fall), 0.0, 0.48 * fall,
                shape.period(), 1.0 / shape.period(),
                up ? 3.0 : 2.0, up ? width : rest, 100.0 * (up ? width : rest) / shape.period(),
                up ? 2.0 : 3.0, up ? rest : width, 100.0 * (up ? rest : width) / shape.period()};
            // clang-format on
            BilevelMeasurements bilevel = measuring(expected.lowStateLevel, expected.highStateLevel);
            bilevel.setSettleSeek(0.6 * width);
            const Metrics metrics = measure(bilevel, times, values);
            for (const bilevelMeasurementsField& field : bilevelMeasurementsFields) {
                SCOPED_TRACE(field.name);
                expectValues({metrics.*field.value}, {expected.*field.value}, 1e-10);
            }
        }
    }
}

/// Step response of a second-order system, 0 before t = 0; w = 1.
double stepResponse(double damping, double t) {
    const double d = std::sqrt(1.0 - damping * damping);
    return t < 0.0 ? 0.0 : 1.0 - std::exp(-damping * t) * (std::cos(d * t) + damping / d * std::sin(d * t));
}

double bisect(const std::function<double(double)>& f, double low, double high) {
    for (int i = 0; i < 80; ++i) {
        const double middle = 0.5 * (low + high);
        ((f(low) < 0.0) == (f(middle) < 0.0) ? low : high) = middle;
    }
    return low;
}

// Chords of a curve with |x''| <= 1 depart from it by at most dt^2 / 8 = 1.3e-7; at slopes of 0.05 and more that is
// less than 3e-6 in time, and the peak lies within dt^2 / 8 of a sample's value.
TEST(BilevelMeasurements, stepResponseReadsOvershootPreshootAndSettlingTime) {
    constexpr double damping = 0.3;
    constexpr double interval = 1e-3;
    const auto response = [](double t) { return stepResponse(damping, t); };
    const auto timeAt = [&](double level) { return bisect([&](double t) { return response(t) - level; }, 0.0, 3.0); };
    // The envelope stays inside 2 % from ln(50 / d) / damping = 13.2 on; between extremes pi / d = 3.29 apart the last
    // entry lies between the extremes at 3 pi / d = 9.88 (outside: 5.2 % above) and 4 pi / d (inside: 1.9 % below).
    const double lastExtreme = 3.0 * std::numbers::pi / std::sqrt(1.0 - damping * damping);
    const double settled = bisect([&](double t) { return response(t) - 1.02; }, lastExtreme, lastExtreme + 1.6);
    for (const double sign : {1.0, -1.0}) {
        const Values times = ramp(-5000 * interval, 45001, interval);
        Values values;
        for (const double t : times) {
            // Before the step a dip of 5 %, inside the stretch of three rise times.
            values.push_back(sign * (t < -0.5 && t > -1.0 ? -0.05 : response(t)));
        }
        BilevelMeasurements bilevel = sign > 0 ? measuring(0.0, 1.0) : measuring(-1.0, 0.0);
        bilevel.setSettleSeek(30.0);
        const Metrics metrics = measure(bilevel, times, values);
        const double overshoot = 100.0 * std::exp(-std::numbers::pi * damping / std::sqrt(1.0 - damping * damping));
        const bool up = sign > 0;
        EXPECT_NEAR(up ? metrics.riseTime : metrics.fallTime, timeAt(0.9) - timeAt(0.1), 1e-5);
        EXPECT_NEAR(up ? metrics.posPreshoot : metrics.negPreshoot, 5.0, 1e-11);
        EXPECT_NEAR(up ? metrics.posOvershoot : metrics.negUndershoot, overshoot, 1e-5);
        EXPECT_NEAR(up ? metrics.posSettlingTime : metrics.negSettlingTime, settled - timeAt(0.5), 1e-5);
        // Looking only up to where it still rings, there is no settling time.
        bilevel.setSettleSeek(lastExtreme - timeAt(0.5));
        const Metrics ringing = measure(bilevel, times, values);
        EXPECT_TRUE(std::isnan(up ? ringing.posSettlingTime : ringing.negSettlingTime));
    }
}

// In values of 0 to 100 the bin k holds k < x <= k + 1, and the level is at k + 0.5.
TEST(BilevelMeasurements, stateLevelsAreTheModesOfTheTwoHalves) {
    const struct {
        Values values;
        double low, high;
    } rows[] = {
        {{0, 0, 100, 100}, 0.5, 99.5},
        {{0, 20, 20, 60, 60, 90, 100}, 19.5, 59.5},        // the lower of equal bins
        {{0, 20, 20, 20.5, 70, 70, 70, 100}, 19.5, 69.5},  // 20.5 lies in the next bin
        {{0, 50, 50, 50, 90, 90, 100}, 49.5, 49.5},        // the middle bin belongs to both halves
        {{0, nan, nan, 20, 20, 90, 90, 100}, 0.5, 89.5},   // NaN counts in bin 0, as the minimum does
        {{0, 20, 20, infinity}, 0.5, 89.5},                // nothing to find: as before
        {{7, 7, 7}, 7.0, 7.0},
    };
    BilevelMeasurements bilevel;
    for (const auto& row : rows) {
        const Metrics metrics = measure(bilevel, row.values);
        EXPECT_EQ(metrics.lowStateLevel, row.low) << row.values[1];
        EXPECT_EQ(metrics.highStateLevel, row.high) << row.values[1];
    }
    // A difference from the minimum that overflows in its scaling counts in bin 0, in long spans as in short ones.
    for (const std::size_t pairs : {1u, 300u}) {
        EXPECT_EQ(measure(bilevel, joined({Values(pairs, -5e307), Values(pairs, 5e307)})).amplitude, 0.0);
    }
}

TEST(BilevelMeasurements, whatCannotBeMeasuredReadsNaN) {
    BilevelMeasurements bilevel = measuring(0.0, 1.0);
    const auto expectUnmeasured = [](const Metrics& metrics, std::size_t from, std::size_t to, const char* what) {
        for (std::size_t i = from; i < to; ++i) {
            const bilevelMeasurementsField& field = bilevelMeasurementsFields[i];
            EXPECT_TRUE(std::isnan(metrics.*field.value)) << what << ": " << field.name << " " << metrics.*field.value;
        }
    };
    expectUnmeasured(measure(bilevel, {0.5, 0.5, 0.5, nan}), 3, 25, "no sample in a state");
    const Metrics oneState = measure(bilevel, {2, 2, 0.5, 0.5, 2});
    EXPECT_EQ(oneState.posEdges + oneState.negEdges, 0.0);
    expectUnmeasured(oneState, 7, 25, "one state, with a stop in the band");
    expectUnmeasured(measure(bilevel, {5}), 7, 25, "one sample");

    BilevelMeasurements off = measuring(0.0, 1.0);
    off.setComputeTransitions(false);
    off.setComputeAberrations(false);
    off.setComputeCycles(false);
    const Metrics levelsOnly = measure(off, {-1, 2, -1, 2});
    EXPECT_EQ(levelsOnly.amplitude, 1.0);
    expectUnmeasured(levelsOnly, 3, 25, "stages switched off");
    // An empty span leaves everything as it was.
    EXPECT_EQ(off.computeBilevelMetrics(nullptr, {0, 0})->amplitude, 1.0);

    // Two transitions hold a whole pulse, but no period: no figure of the cycles.
    expectUnmeasured(measure(bilevel, {-1, -1, 2, 2, -1, -1}), 17, 25, "two transitions");
    const Metrics three = measure(bilevel, {-1, -1, 2, 2, 2, -1, -1, 2, 2});
    EXPECT_DOUBLE_EQ(three.period, 5.0);
    EXPECT_DOUBLE_EQ(three.posDutyCycle, 60.0);
    EXPECT_EQ(three.negPulses, 1.0);
    EXPECT_DOUBLE_EQ(three.negWidth, 2.0);
    EXPECT_TRUE(std::isnan(three.negDutyCycle));

    // No amplitude, no percent of it.
    BilevelMeasurements flat = measuring(0.5, 0.5);
    const Metrics noAmplitude = measure(flat, {0, 0, 1, 1, 0, 0, 1, 1});
    EXPECT_EQ(noAmplitude.posEdges, 2.0);
    EXPECT_EQ(noAmplitude.period, 4.0);
    EXPECT_TRUE(std::isnan(noAmplitude.posSlewRate));
    expectUnmeasured(noAmplitude, 9, 12, "aberrations without amplitude");
    // Time that stands still has no frequency.
    const Metrics noTime = measure(bilevel, Values(8, 3.0), {0, 0, 1, 1, 0, 0, 1, 1});
    EXPECT_EQ(noTime.period, 0.0);
    for (const double figure : {noTime.frequency, noTime.posDutyCycle, noTime.posSlewRate}) {
        EXPECT_TRUE(std::isnan(figure));
    }
}

// A transition of 0 to 1 in 5 intervals lasts 4 (10 % to 90 %), so that the stretches are 12 long: that of the second
// rise would reach back to the dip before the first one, but ends at the fall between.
TEST(BilevelMeasurements, stretchBeforeTheThirdTransitionEndsAtTheSecond) {
    BilevelMeasurements bilevel = measuring(0.0, 1.0);
    const Values values{0,   0,   0,   -0.4, 0,   0.2, 0.4, 0.6, 0.8, 1.0, 0.8,
                        0.6, 0.4, 0.2, 0.0,  0.2, 0.4, 0.6, 0.8, 1.0, 1.0, 1.0};
    // 40 % before the first rise and 0 % before the second.
    EXPECT_NEAR(measure(bilevel, values).posPreshoot, 20.0, 1e-9);
    // The second rise, in one interval, looks back from 11.02 to 8.62, and so passes over the dip; but a time before
    // the fall that is later than that lets it begin right at the fall.
    Values times = ramp(0, 14);
    const Values dipBehindFall{0, 0, 0, 1, 1, 0, -0.4, 0, 0, 0, 0, 0, 1, 1};
    EXPECT_EQ(measure(bilevel, times, dipBehindFall).posPreshoot, 0.0);
    times[1] = 10.5;
    EXPECT_NEAR(measure(bilevel, times, dipBehindFall).posPreshoot, 20.0, 1e-9);
}

TEST(BilevelMeasurements, referenceLevelsOutsideTheTransitionTakeTheFirstInterval) {
    BilevelMeasurements bilevel = measuring(0.0, 1.0);
    bilevel.setMidReferenceLevel(250.0);
    // No interval crosses 2.5: the line of the first one, 0.1 a unit of time from -0.1, reaches it at 26.
    const Metrics metrics = measure(bilevel, {-0.1, 0.0, -0.1, -0.1, 1.1, 1.1});
    EXPECT_EQ(metrics.posEdges, 0.0);  // 26 lies outside the span
    bilevel.setMidReferenceLevel(1.0);
    bilevel.setLowerReferenceLevel(-50.0);
    // No sample of the transition lies below -0.5. It starts at sample 0: the crossing of the start level is not known.
    const Metrics atStart = measure(bilevel, {-0.1, 1.1, 1.1});
    EXPECT_EQ(atStart.posEdges, 1.0);
    EXPECT_TRUE(std::isnan(atStart.riseTime));
    // Further inside it is that of the mid interval: from 0.5 below 0 to 0.9 on a line of 1.2.
    EXPECT_NEAR(measure(bilevel, {-0.1, -0.1, 1.1, 1.1}).riseTime, 1.4 / 1.2, 1e-12);
}

// Long spans are measured in blocks: wherever their borders lie, the figures stay the same to the last bit, also where
// a time that falls at the very end is noticed only when all else has been measured.
TEST(BilevelMeasurements, longSpansDoNotDependOnWhereBlocksEnd) {
    std::mt19937 random(5);
    Values waveform(40, 0.0);
    while (waveform.size() < 5000) {
        const double level = waveform.back() > 0.5 ? 0.0 : 1.0;
        waveform.push_back(0.1 * static_cast<double>(2 + random() % 7));
        for (std::size_t i = 3 + random() % 30; i > 0; --i) {
            waveform.push_back(level + 0.001 * static_cast<double>(random() % 40));
        }
    }
    BilevelMeasurements bilevel = measuring(0.0, 1.0);
    bilevel.setSettleSeek(6.0);
    waveform.insert(waveform.end(), 9, waveform.back());
    const Metrics expected = measure(bilevel, waveform);
    EXPECT_GT(expected.posEdges, 100.0);
    for (std::size_t ahead = 1; ahead < 60; ++ahead) {
        const Values values = joined({Values(ahead, 0.0), waveform});
        Values times = ramp(-static_cast<double>(ahead), values.size());
        times.back() -= ahead % 2 == 0 ? 0.0 : 1.5;
        const Metrics metrics = measure(bilevel, times, values);
        for (const bilevelMeasurementsField& field : bilevelMeasurementsFields) {
            EXPECT_EQ(metrics.*field.value, expected.*field.value) << field.name << ", " << ahead << " ahead";
        }
    }
    // Times that begin anew right behind a block: the rise before lies behind the last time, and nothing of it counts.
    const Values times = joined({ramp(0, bilevelBlockSamples), ramp(0, 100)});
    const Values step = joined({Values(times.size() - 120, 0.0), Values(120, 1.0)});
    EXPECT_TRUE(std::isnan(measure(bilevel, times, step).posOvershoot));
}

// Random spans, in order and not, with odd values and levels: no access outside, and the transitions are those that a
// plain walk over all samples finds.
TEST(BilevelMeasurements, randomSpansGiveTheTransitionsOfAPlainWalk) {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> uniform(-0.5, 1.5);
    for (int run = 0; run < 3000; ++run) {
        const bool timesFall = run % 5 == 0;
        const bool hasOddValues = run % 7 == 0;
        const bool hasOddLevels = run % 3 == 0;
        Values times;
        Values values;
        double held = 0.0;
        for (std::size_t i = 0; i < 1 + random() % 400; ++i) {
            times.push_back(timesFall ? 100.0 * uniform(random) : static_cast<double>(i));
            held = random() % 40 == 0 || run % 2 == 0 ? uniform(random) : held;
            values.push_back(hasOddValues && random() % 100 == 0 ? (random() % 2 ? nan : infinity) : held);
        }
        const double low = hasOddLevels ? uniform(random) : 0.0;
        const double high = hasOddLevels ? uniform(random) : 1.0;
        BilevelMeasurements bilevel = measuring(low, high);
        bilevel.setSettleSeek(run % 4 == 0 ? -1.0 : 5.0);
        bilevel.setMidReferenceLevel(hasOddLevels ? 150.0 * uniform(random) : 50.0);
        const Metrics metrics = measure(bilevel, times, values);
        double transitions = 0.0;
        double state = 0.5;  // neither
        for (const double x : values) {
            const double next = x < 0.02 ? 0.0 : x > 0.98 ? 1.0 : state;
            transitions += std::fabs(next - state) == 1.0 ? 1.0 : 0.0;
            state = next;
        }
        if (!timesFall && !hasOddValues && !hasOddLevels && state != 0.5) {
            EXPECT_EQ(metrics.posEdges + metrics.negEdges, transitions) << run;
        }
    }
}

}  // namespace
