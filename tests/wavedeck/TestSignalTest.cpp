#include "TestSignalReader.h"

#include "FileInput.h"

namespace {

using Complex = std::complex<double>;

Values samples(const std::string& text, std::size_t n) {
    program::TestSignalReader reader(text);
    return nextFrame(reader, n);
}

/// Amplitude of the component at a frequency that goes through whole cycles within the samples: the magnitude of the
/// discrete Fourier sum times 2 / n.
Complex component(const Values& x, double cycles) {
    Complex sum = 0.0;
    const auto n = static_cast<double>(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        sum += x[i] * std::polar(1.0, -2.0 * std::numbers::pi * cycles * static_cast<double>(i) / n);
    }
    return sum * 2.0 / n;
}

double level(const Values& x, double cycles) {
    return std::abs(component(x, cycles));
}

/// Sum of the products of two channels, per point.
double meanProduct(const Values& x, const Values& y) {
    return std::inner_product(x.begin(), x.end(), y.begin(), 0.0) / static_cast<double>(x.size());
}

// Sums of n terms of rounding error, and of angles up to 2 pi: well below 1e-12 at n = 4800.
constexpr double rounding = 1e-12;

TEST(TestSignal, ComponentsHaveTheirAmplitudes) {
    // 4800 samples at 48 kHz: cycles = frequency / 10 Hz.
    const auto tone = samples("tone?frequency=1230&amplitude=0.7&phase=-90&dc=0.25", 4800);
    EXPECT_NEAR(std::abs(component(tone, 123) - Complex(0.0, -0.7)), 0.0, rounding);  // 0.7 sin
    EXPECT_NEAR(level(tone, 0), 2 * 0.25, rounding);

    const auto two = samples("twotone?frequency=5k&spacing=1k&amplitude=0.4&im3=-40", 4800);
    EXPECT_NEAR(level(two, 500), 0.4, rounding);
    EXPECT_NEAR(level(two, 400), 0.004, rounding);
    EXPECT_NEAR(level(two, 700), 0.004, rounding);

    const auto many = samples("multitone?frequency=1k,2k,5k&amplitude=1,0.1&phase=0,180", 4800);
    EXPECT_NEAR(component(many, 100).real(), 1.0, rounding);
    EXPECT_NEAR(component(many, 200).real(), -0.1, rounding);
    EXPECT_NEAR(component(many, 500).real(), -0.1, rounding);  // the last of a list stands for the rest

    const auto am = samples("am?frequency=10k&modulation=2k&depth=0.3", 4800);
    EXPECT_NEAR(level(am, 1000), 1.0, rounding);
    EXPECT_NEAR(level(am, 800), 0.15, rounding);

    // Bessel functions of the modulation index 2.
    const auto fm = samples("fm?frequency=10k&modulation=1k&deviation=2k", 4800);
    EXPECT_NEAR(level(fm, 1000), std::cyl_bessel_j(0.0, 2.0), rounding);
    EXPECT_NEAR(level(fm, 1300), std::cyl_bessel_j(3.0, 2.0), rounding);
}

TEST(TestSignal, PhaseStaysExactAfterManySamples) {
    // After a million seconds at 1.5 GHz, a whole number of cycles, the wave is where it began.
    constexpr std::uint64_t later = 1500000000ULL * 1000000ULL;
    for (std::uint64_t i = 0; i < 1500; ++i) {
        ASSERT_NEAR(program::cycleFraction(1000000001.0, later + i, 1.5e9),
                    program::cycleFraction(1000000001.0, i, 1.5e9), 1e-15);
    }
}

TEST(TestSignal, ComplexToneTurnsAndRealWaveformsHaveNone) {
    const auto rows = samples("tone?frequency=-3k&rate=48k&complex=true&channels=2", 16);
    ASSERT_EQ(rows.size(), 64U);
    for (std::size_t i = 0; i < 16; ++i) {
        const auto expected = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(i) / 16.0);
        EXPECT_NEAR(std::abs(Complex(rows[i], rows[32 + i]) - expected), 0.0, 1e-15);
        EXPECT_EQ(rows[16 + i], rows[i]);
    }
    EXPECT_THROW(samples("square?complex=true", 1), program::UsageError);
}

TEST(TestSignal, WaveformsPassThroughTheirCorners) {
    const auto square = samples("square?frequency=4k&duty=0.25&amplitude=2", 24);  // 12 samples a period
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(square[i], i % 12 < 3 ? 2.0 : -2.0) << i;
    }
    // In samples: up in 10, half-amplitude width 30, down in 20; falls from sample 25 to 45.
    const auto pulse = samples("pulse?rate=1M&period=100u&rise=10u&fall=20u&width=30u&low=-1&high=3&delay=5u", 205);
    const std::pair<std::size_t, double> corners[] = {{5, -1}, {10, 1}, {15, 3}, {30, 3}, {40, 1}, {50, -1}, {110, 1}};
    for (const auto& [index, value] : corners) {
        EXPECT_NEAR(pulse[index], value, rounding) << index;
    }
    // 8 samples a period: eighths of it are exact.
    EXPECT_EQ(samples("ramp?frequency=6k&symmetry=0.5", 8), (Values{-1, -0.5, 0, 0.5, 1, 0.5, 0, -0.5}));
    // A linear sweep from 0: phase k t^2 / 2, here 2.4e4 Hz/s; at t = 0.1 s 120 cycles, at 0.05 s 30.
    const auto chirp = samples("chirp?start=0&stop=2.4k&period=0.1", 9600);
    for (const std::size_t index : {0U, 2400U, 4800U, 7200U}) {
        EXPECT_NEAR(chirp[index], 1.0, rounding) << index;
    }
    // Logarithmic: after half the period the frequency is the geometric mean.
    const auto sweep = samples("chirp?start=1&stop=100&period=1&law=log&rate=1M", 500001);
    const double cycles = (10.0 - 1.0) / std::log(100.0);
    EXPECT_NEAR(sweep[500000], std::cos(2.0 * std::numbers::pi * cycles), 1e-10);
}

TEST(TestSignal, StepOvershootsByItsDamping) {
    // Second order: overshoot exp(-pi d / sqrt(1 - d^2)), at the time 1 / (2 f sqrt(1 - d^2)) behind the step.
    const double root = std::sqrt(1.0 - 0.16);
    const auto step = samples("step?at=1m&frequency=100&damping=0.4&low=1&high=3&rate=1M", 10000);
    const auto top = std::max_element(step.begin(), step.end());
    EXPECT_EQ(step[1000], 1.0);
    // The top is flat: one sample beside it is lower by (w dt)^2 / 2, some 2e-7.
    EXPECT_NEAR(*top, 3.0 + 2.0 * std::exp(-0.4 * std::numbers::pi / root), 1e-6);
    EXPECT_NEAR(static_cast<double>(top - step.begin()), 1000.0 + 1e6 / (200.0 * root), 1.0);
    // Over-damped with d = 1.25 the poles lie at w/2 and 2 w: 1 - (4 exp(-w t / 2) - exp(-2 w t)) / 3.
    const auto slow = samples("step?at=0&frequency=100&damping=1.25&rate=1M", 5000);
    const double wt = 2.0 * std::numbers::pi * 100.0 * 4000e-6;
    EXPECT_NEAR(slow[4000], 1.0 - (4.0 * std::exp(-wt / 2.0) - std::exp(-2.0 * wt)) / 3.0, rounding);
    // The ideal step, repeated.
    EXPECT_EQ(samples("step?at=2&period=4&rate=1", 9), (Values{0, 0, 1, 1, 0, 0, 1, 1, 0}));
}

TEST(TestSignal, NoiseHasItsPowerAndEachChannelItsOwn) {
    const std::size_t n = 1U << 18U;
    // The power of n Gaussian numbers scatters by sqrt(2 / n), 0.28 %; five times that.
    const double tolerance = 5.0 * std::sqrt(2.0 / static_cast<double>(n));
    for (const char* text :
         {"noise?rms=1", "noise?rms=1&distribution=uniform", "noise?rms=1&complex=true", "tone?amplitude=0&noise=1"}) {
        const auto x = samples(text, n);
        EXPECT_NEAR(meanProduct(x, x) * static_cast<double>(x.size() / n), 1.0, tolerance) << text;
    }
    const auto pair = samples("noise?rms=1&channels=2", n);
    EXPECT_NEAR(meanProduct(part(pair, 0, n), part(pair, n, n)), 0.0, tolerance);
    EXPECT_NE(samples("noise?seed=1", 4), samples("noise?seed=2", 4));
}

TEST(TestSignal, PhaseNoiseLiesAtItsLevel) {
    // A complex carrier at 0 Hz: its imaginary part is the phase, as long as that is small. Over blocks of 1000 samples
    // the phase steps by a walk whose variance says the level: L(f) = s^2 rate / (4 pi^2 f^2) for f far below the rate.
    const std::size_t n = 2000000;
    const auto x = samples("phasenoise?frequency=0&level=-100&at=1k&rate=1M&complex=true", n);
    double sum = 0.0;
    const std::size_t stride = 1000;
    for (std::size_t i = stride; i < n; i += stride) {
        const auto turn = Complex(x[i], x[n + i]) / Complex(x[i - stride], x[n + i - stride]);
        sum += std::arg(turn) * std::arg(turn);
    }
    const double variance = sum / static_cast<double>(n - stride);  // of one step
    const double expected = 1e-10 * 4.0 * std::numbers::pi * std::numbers::pi * 1e6 / 1e6;
    EXPECT_NEAR(variance / expected, 1.0, 5.0 * std::sqrt(2.0 / 1999.0));
    const auto floor = samples("phasenoise?frequency=0&level=-1000&floor=-120&rate=1M&complex=true", n);
    // White phase of density 2 * 1e-12 per Hz over half the rate: variance 1e-12 * 1e6.
    const Values phase = part(floor, n, n);
    EXPECT_NEAR(meanProduct(phase, phase) / 1e-6, 1.0, 5.0 * std::sqrt(2.0 / static_cast<double>(n)));
}

TEST(TestSignal, AnySplitGivesTheSameSamples) {
    for (const char* text :
         {"tone?noise=0.1", "twotone?im3=-30", "multitone", "noise?channels=3", "chirp?period=1m", "square", "pulse",
          "ramp", "am?complex=true", "fm", "phasenoise?floor=-90", "step?at=1m"}) {
        const auto whole = samples(text, 997);
        program::TestSignalReader reader(text);
        std::vector<Values> rows(static_cast<std::size_t>(reader.facts().rows()));
        Values frame;
        for (std::size_t points = 1, done = 0; done < 997; points = points * 3 % 101) {
            const auto n = reader.read(std::min(points, 997 - done), frame);
            for (std::size_t row = 0; row < rows.size(); ++row) {
                append(rows[row], part(frame, row * n, n));
            }
            done += n;
        }
        EXPECT_TRUE(joined(rows) == whole) << text;
    }
}

TEST(TestSignal, EndsAfterItsDuration) {
    program::TestSignalReader reader("tone?duration=10m&rate=1k");
    Values frame;
    EXPECT_EQ(reader.facts().length, 10U);
    EXPECT_EQ(reader.read(7, frame), 7U);
    EXPECT_EQ(reader.read(7, frame), 3U);
    EXPECT_EQ(reader.read(7, frame), 0U);
    EXPECT_FALSE(program::TestSignalReader("tone?duration=inf").facts().length);
}

TEST(TestSignal, RefusesWhatItDoesNotKnow) {
    const std::pair<const char*, const char*> rows[] = {
        {"tne", "gen:tne: no such test signal; there are tone twotone"},
        {"tone?freq=1", "gen:tone: no key `freq`; it has amplitude channels"},
        {"tone?frequency=1kHz", "gen:tone: frequency: `1kHz` is not a number"},
        {"tone?frequency", "gen:tone: `frequency` is not of the form key=value"},
        {"tone?frequency=1&frequency=2", "gen:tone: the key `frequency` is given twice"},
        {"tone?frequency=1,2", "gen:tone: frequency: takes one value"},
        {"tone?rate=0", "gen:tone: rate: 0 is not within"},
        {"tone?rate=nan", "gen:tone: rate: nan is not within"},
        {"tone?channels=1.5", "gen:tone: channels: takes a whole number"},
        {"noise?distribution=cauchy", "gen:noise: distribution: `cauchy` is none of gaussian uniform"},
        {"pulse?width=0.99m", "do not fit into the period"},
        {"chirp?law=log&start=0", "gen:chirp: a log sweep needs"},
    };
    for (const auto& [text, expected] : rows) {
        expectError(std::string("gen:") + text, {}, expected);
    }
}

}  // namespace
