#include "DigitalFilterFrequencyResponse.h"

#include "Test.h"
#include "UnitCirclePolynomial.h"

namespace {

using Complex = std::complex<long double>;
using Lists = std::vector<Values>;

constexpr double sampleRate = 44100.0;
constexpr long double pi = std::numbers::pi_v<long double>;

/// exp(-j * 2 * pi * m * f / rate), whole turns taken off first.
Complex delayBy(long double m, long double f, long double rate = sampleRate) {
    const long double turns = m * (f / rate);
    return std::polar(1.0L, -2 * pi * (turns - std::round(turns)));
}

DigitalFilterFrequencyResponse response(unsigned long points, double rate = sampleRate) {
    DigitalFilterFrequencyResponse result;
    result.setFFTLength(points);
    result.setSampleRate(rate);
    result.setFrequencyRange({0.0, rate / 2});
    return result;
}

/// Checks out against the expected response, relative to the largest magnitude expected.
void expectResponse(const Values& out, const std::function<Complex(double)>& expected, double tolerance) {
    const std::size_t n = out.size() / 3;
    long double largest = 0;
    long double worst = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const Complex value = expected(out[k]);
        const long double error = std::abs(Complex(out[n + k], out[2 * n + k]) - value);
        worst = std::isnan(error) ? std::numeric_limits<long double>::infinity() : std::max(worst, error);
        largest = std::max(largest, std::abs(value));
    }
    EXPECT_LE(worst, tolerance * largest);
}

TEST(DigitalFilterFrequencyResponse, GridIsLinearWithExactEnds) {
    DigitalFilterFrequencyResponse standard;
    standard.computeFrequencyVector();
    ASSERT_EQ(standard.getFrequencyVector().size(), 2048U);
    EXPECT_EQ(standard.getFrequencyVector().front(), 0.0);
    EXPECT_EQ(standard.getFrequencyVector().back(), 22050.0);

    constexpr double huge = std::numeric_limits<double>::max();
    const struct {
        unsigned long points;
        Values range;
        Values expected;
    } rows[] = {
        {5, {-1.0, 3.0}, {-1.0, 0.0, 1.0, 2.0, 3.0}},
        {3, {8.0, 2.0}, {8.0, 5.0, 2.0}},
        {3, {4.0, 4.0}, {4.0, 4.0, 4.0}},
        {1, {1.0, 9.0}, {9.0}},
        {0, {1.0, 9.0}, {}},
        {5, {-huge, huge}, {-huge, -huge / 2, 0.0, huge / 2, huge}},  // the difference overflows
        {2, {1.0}, {nan, nan}},
    };
    for (const auto& row : rows) {
        standard.setFFTLength(row.points);
        standard.setFrequencyRange(row.range);
        standard.computeFrequencyVector();
        expectValues(standard.getFrequencyVector(), row.expected, 1e-15);
    }
}

TEST(DigitalFilterFrequencyResponse, FirAgreesWithClosedForms) {
    const auto dirichlet = [](int taps) {
        return [taps](double f) {
            const long double turns = f / sampleRate;
            const long double sum = f == 0 ? taps : std::sin(pi * taps * turns) / std::sin(pi * turns);
            return delayBy((taps - 1) / 2.0L, f) * sum;
        };
    };
    Values pureDelay(4096, 0.0);
    pureDelay.back() = 1.0;
    const struct {
        const char* name;
        Values numerator;
        std::function<Complex(double)> expected;
    } rows[] = {
        {"one coefficient", {-2.5}, [](double) { return Complex(-2.5L); }},
        {"mean of two", {0.5, 0.5}, [](double f) { return delayBy(0.5L, f) * std::cos(pi * f / sampleRate); }},
        {"sum of 64", Values(64, 1.0), dirichlet(64)},
        // The m-th power of a point has m times its phase error: of all filters of 4096 taps the most exacting one.
        {"delay by 4095", pureDelay, [](double f) { return delayBy(4095, f); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Lists numerators{row.numerator};
        Lists denominators{{7.0}};  // a single denominator coefficient plays no part
        Values out;
        response(501).freqz(numerators, denominators, out);
        ASSERT_EQ(out.size(), 3U * 501);
        // The parts of a point are off by 0.75 ulp at most, 1.2e-16 together: 4095 * 1.2e-16 = 5e-13.
        expectResponse(out, row.expected, row.numerator.size() > 64 ? 5e-13 : 2e-14);
    }
}

/// The response of a delay by one is the points themselves, conjugated. Negative and high frequencies take the other
/// ways of reducing an angle.
TEST(DigitalFilterFrequencyResponse, PointsAreWithinThreeQuartersOfAnUlp) {
    Lists numerators{{0.0, 1.0}};
    Lists denominators{{1.0}};
    for (const Values& range : {std::vector{0.0, 22050.0}, {-22050.0, -1e-3}, {3e4, 1e12}}) {
        DigitalFilterFrequencyResponse filter = response(4001);
        filter.setFrequencyRange(range);
        Values out;
        filter.freqz(numerators, denominators, out);
        const auto ulps = [](double value, long double expected) {
            const auto next = static_cast<long double>(std::nextafter(std::abs(value), 2.0));
            const long double unit =
                std::max(next - std::abs(value), 0x1p-60L);  // about 0 the digits of the angle count
            return static_cast<double>(std::abs(value - expected) / unit);
        };
        double worst = 0;
        for (std::size_t k = 0; k < 4001; ++k) {
            const Complex expected = delayBy(1, out[k]);
            worst = std::max({worst, ulps(out[4001 + k], expected.real()), ulps(out[8002 + k], expected.imag())});
        }
        EXPECT_LE(worst, 0.75);
    }
}

TEST(DigitalFilterFrequencyResponse, IirKeepsTwelveDigitsBesideAPole) {
    for (const double radius : {0.5, 0.999, 0.999999}) {
        // A pair of poles at an eighth of the sample rate, which is a point of the grid. The coefficients are rounded,
        // so that the reference is formed from them and not from the poles.
        const double a1 = -2.0 * radius * std::cos(std::numbers::pi / 4);
        const double a2 = radius * radius;
        Lists numerators{{1.0, -0.5}};
        Lists denominators{{1.0, a1, a2}};
        Values out;
        response(401).freqz(numerators, denominators, out);
        EXPECT_EQ(numerators[0].size(), 3U);
        const auto quotient = [&](double f) {
            return (1.0L - 0.5L * delayBy(1, f)) /
                   (1.0L + static_cast<long double>(a1) * delayBy(1, f) + static_cast<long double>(a2) * delayBy(2, f));
        };
        expectResponse(out, quotient, 1e-12);
    }
    Lists numerators{{1.0}};
    Lists integrator{{1.0, -1.0}};
    Values out;
    response(3).freqz(numerators, integrator, out);
    EXPECT_TRUE(std::isinf(out[3]));  // a pole on the grid
    EXPECT_NEAR(out[3 + 2], 0.5, 1e-15);
}

TEST(DigitalFilterFrequencyResponse, AgreesWithAnotherTool) {
    std::ifstream file(FILTER_RESPONSES);
    const auto numbers = [&file] {
        std::string line;
        std::getline(file, line);
        std::istringstream row(line);
        return Values(std::istream_iterator<double>(row), {});
    };
    int filters = 0;
    for (std::string name; std::getline(file, name); ++filters) {
        SCOPED_TRACE(name);
        Lists numerators{numbers()};
        Lists denominators{numbers()};
        const Values real = numbers();
        const Values imag = numbers();
        Values out;
        response(real.size(), 48000.0).freqz(numerators, denominators, out);
        std::size_t k = 0;
        // The other tool works in doubles: its own rounding is most of the difference.
        expectResponse(
            out, [&](double) { return ++k, Complex(real[k - 1], imag[k - 1]); }, 1e-12);
    }
    EXPECT_EQ(filters, 6) << "the whole file";
}

TEST(DigitalFilterFrequencyResponse, ChangedOptionsActLikeANewObject) {
    Lists numerators{gaussianNoise(17, 1), {1.0, 2.0}};
    Lists denominators{{1.0}, {1.0, 0.5}};
    Values out;
    Values expected;
    DigitalFilterFrequencyResponse changed = response(100, 8000.0);
    const auto expectLikeNew = [&](const std::function<void(DigitalFilterFrequencyResponse&)>& set) {
        changed.freqz(numerators, denominators, out);
        set(changed);
        changed.freqz(numerators, denominators, out);
        DigitalFilterFrequencyResponse fresh = changed;
        fresh.setFrequencyRange({0.0, 4000.0});
        fresh.computeFrequencyVector();
        fresh.freqz(numerators, denominators, expected);
        EXPECT_EQ(out, expected);
    };
    expectLikeNew([](auto& filter) { filter.setSampleRate(16000.0); });
    expectLikeNew([](auto& filter) { filter.setFFTLength(33); });
    changed.setFrequencyRange({0.0, 8000.0});
    changed.freqz(numerators, denominators, out);
    response(33, 16000.0).freqz(numerators, denominators, expected);
    EXPECT_EQ(out, expected);

    changed.iirfreqz(numerators, denominators, 1, out);
    EXPECT_NEAR(out[33], 2.0, 1e-15);
    Lists none;
    Lists empty{{}};
    const Values before = out;
    changed.freqz(none, denominators, out);
    changed.freqz(empty, denominators, out);
    changed.freqz(numerators, none, out);
    changed.firfreqz(numerators, denominators, 2, out);
    changed.iirfreqz(numerators, denominators, 2, out);
    EXPECT_EQ(out, before);
}

/// Every kernel against the rule written as one line, for lengths around its blocks, with nothing written past the end.
TEST(UnitCirclePolynomial, KernelsAgreeWithThePlainRule) {
    constexpr double canary = 1e300;
    for (const UnitCircleKernel& kernel : supportedUnitCircleKernels()) {
        for (const std::size_t points : {1U, 7U, 8U, 9U, 16U, 31U, 32U, 33U, 67U}) {
            for (const std::size_t count : {0U, 1U, 2U, 65U}) {
                SCOPED_TRACE(std::string(kernel.instructionSet) + " " + std::to_string(points));
                const Values c = gaussianNoise(count, 1);
                Values zReal(points);
                Values zImag(points);
                for (std::size_t k = 0; k < points; ++k) {
                    zReal[k] = std::cos(0.1 + 0.37 * static_cast<double>(k));
                    zImag[k] = std::sin(0.1 + 0.37 * static_cast<double>(k));
                }
                Values real(points + 1, canary);
                Values imag(points + 1, canary);
                kernel.evaluate(c.data(), count, zReal.data(), zImag.data(), points, real.data(), imag.data());
                for (std::size_t k = 0; k < points; ++k) {
                    std::complex<double> expected;
                    for (std::size_t m = count; m-- > 0;) {
                        expected = expected * std::complex(zReal[k], -zImag[k]) + c[m];
                    }
                    // 65 steps of a few roundings of values of up to 65 * 3.
                    EXPECT_NEAR(std::abs(expected - std::complex(real[k], imag[k])), 0.0, 1e-12);
                }
                EXPECT_EQ(real[points], canary);
                EXPECT_EQ(imag[points], canary);
            }
        }
    }
}

}  // namespace
