#include "EstimatorSupport.h"

namespace {

constexpr double sampleRate = 10000.0;

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
