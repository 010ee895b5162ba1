#include "EstimatorSupport.h"

namespace {

constexpr double sampleRate = 10000.0;

Bench::Signal whiteNoise(std::size_t n, double deviation, bool isComplex) {
    Bench::Signal signal{{gaussianNoise(n, 11, deviation)}, isComplex};
    if (isComplex) {
        signal.columns.push_back(gaussianNoise(n, 12, deviation));
    }
    return signal;
}

// A sine of amplitude 2 has 2 W into 1 ohm; below full scale no load counts. Levels in the other units are told in
// docs/conformance.md.
TEST(SpectrumEstimatorScaling, FullScaleIsTheRangeOfTheSignal) {
    Bench bench;
    bench.usePlainSettings(sampleRate, 1000, 1000);
    bench.estimator.setFrequencyRange(Range::oneSided);
    bench.estimator.setSpectrumUnits(Units::dbfs);
    bench.estimator.setReferenceLoad(50);
    bench.estimator.setInputRange({4.0});
    bench.estimator.setPlotMaxHoldTrace(true);
    bench.feed({{{tone(1250, 2, 5000, sampleRate)}, false}}, 1000);
    EXPECT_NEAR(bench.row()[125], decibels(2.0 / 16), 1e-11);
    EXPECT_NEAR(bench.record().maxHoldTrace[125], decibels(2.0 / 16), 1e-11);
}

// The level of a tone on a bin and the density of white noise hold at once only if window, noise bandwidth and power
// fit together. With K = 100 averages a bin of noise has a deviation of 4.34 / sqrt(K) = 0.43 dB; the mean over bins
// has sqrt(2 b / (L K)), b at most 3.5 for the windows below: 0.8 % at 1000 samples. Five deviations are allowed.
TEST(SpectrumEstimatorScaling, ToneAndNoiseAreRightForEveryWindowAndLength) {
    for (const char* window :
         {"blackman-harris", "chebyshev", "flat-top", "hamming", "hann", "kaiser", "rectangular"}) {
        for (const std::size_t L : {1000U, 1025U, 250U}) {
            for (const bool isComplex : {false, true}) {
                SCOPED_TRACE(std::string(window) + " " + std::to_string(L));
                const auto measure = [&](const Bench::Signal& signal, Type type) {
                    Bench bench;
                    bench.usePlainSettings(sampleRate, L, L);
                    bench.estimator.setWindow(SpectrumEstimatorEnum::getWindowEnum(window));
                    bench.estimator.setSpectrumType(type);
                    bench.estimator.setFrequencyRange(isComplex ? Range::centered : Range::oneSided);
                    bench.feed({signal}, 10 * L);
                    return bench.row();
                };
                const double bin = sampleRate / static_cast<double>(L) * 100.0;
                Bench::Signal carrier{{tone(bin, 3, 2 * L, sampleRate, 0.0)}, isComplex};
                if (isComplex) {
                    carrier.columns.push_back(tone(bin, 3, 2 * L, sampleRate, -M_PI / 2));
                }
                const Values levels = measure(carrier, Type::power);
                // The side lobes of a real tone's other half reach the peak, where they are not zero on all bins: 60 dB
                // down in amplitude, at either side of it.
                const bool zeroOnBins = std::string(window) != "chebyshev" && std::string(window) != "kaiser";
                EXPECT_NEAR(*std::max_element(levels.begin(), levels.end()), isComplex ? 9.0 : 4.5,
                            isComplex || zeroOnBins ? 1e-11 : 4.5 * 2.1e-3);

                const Values density = measure(whiteNoise(100 * L, 2.0, isComplex), Type::powerDensity);
                const double expected = 8.0 / sampleRate;  // 4 over half the rate, or twice 4 over all of it
                const Values inner(density.begin() + 5, density.end() - 5);
                const double mean =
                    std::accumulate(inner.begin(), inner.end(), 0.0) / static_cast<double>(inner.size());
                const double deviation = std::sqrt(2 * 3.5 / (100.0 * static_cast<double>(L)));
                EXPECT_NEAR(mean / expected, 1.0, 5 * deviation);
                EXPECT_LT(std::abs(decibels(*std::max_element(inner.begin(), inner.end()) / expected)), 5 * 0.43);
                EXPECT_LT(std::abs(decibels(*std::min_element(inner.begin(), inner.end()) / expected)), 5 * 0.5);
            }
        }
    }
}

TEST(SpectrumEstimatorScaling, ConvertsSpectraThatComeIn) {
    const struct {
        Units in, out;
        Type type;
        double load, value, expected;
    } rows[] = {
        {Units::dbm, Units::dbm, Type::power, 1, -33.25, -33.25},
        {Units::dbm, Units::dbm, Type::power, 50, -33.25, -33.25},
        {Units::dbw, Units::dbm, Type::power, 50, -3, 27},
        {Units::dbm, Units::dbw, Type::power, 1, 27, -3},
        {Units::vrms, Units::dbw, Type::power, 50, 5, decibels(0.5)},
        {Units::vrms, Units::dbw, Type::rms, 50, 5, decibels(25)},
        {Units::dbv, Units::dbuv, Type::power, 1, 6, 126},
        {Units::dbuv, Units::dbv, Type::power, 1, 126, 6},
        {Units::watts, Units::vrms, Type::power, 1, 9, 3},
        {Units::dbm, Units::dbmPerHz, Type::power, 1, 20, 0.1},
        {Units::none, Units::dbm, Type::power, 1, 7, 7},
        {Units::watts, Units::automatic, Type::power, 1, 7, 7},
    };
    for (const auto& row : rows) {
        SpectrumEstimator estimator;
        estimator.setInputDomain(SpectrumEstimator::InputDomain::frequency);
        estimator.setInputUnits(row.in);
        estimator.setSpectrumUnits(row.out);
        estimator.setSpectrumType(row.type);
        estimator.setReferenceLoad(row.load);
        estimator.setPlotMinHoldTrace(true);
        estimator.setup(1, {4}, {4}, {2}, {0}, true);
        Values out;
        const Values frame{row.value, 1, 2, 3, 4, 5, 6, row.value};
        const auto& record = estimator.processSpectrum(frame.data(), out, 0);
        ASSERT_EQ(out.size(), 12U);
        // Two powers of ten or logarithms, each good to a few units in the last place of levels up to 126
        EXPECT_NEAR(out[4], row.expected, 1e-12);
        EXPECT_NEAR(out[11], row.expected, 1e-12);
        EXPECT_EQ(Values(out.begin(), out.begin() + 4), record.frequencyVector);
        EXPECT_EQ(record.minHoldTrace[7], out[11]);
        EXPECT_EQ(record.spectrumData[0], Values(out.begin() + 4, out.end()));
        EXPECT_EQ(record.numUpdatesProcessed, 1U);
        EXPECT_TRUE(record.isNewDataReady);
    }
}

}  // namespace
