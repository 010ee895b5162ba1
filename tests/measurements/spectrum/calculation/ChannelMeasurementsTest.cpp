#include "ChannelMeasurements.h"

#include "Test.h"

namespace {

using Type = ChannelMeasurementEnum::Type;
using FilterShape = ChannelMeasurementEnum::FilterShape;
using enum SpectrumMeasurementsEnum::SpectrumType;
using enum SpectrumMeasurementsEnum::SpectrumUnits;

/// Bins of 10 Hz from -995 to 995 Hz: they cover -1000 .. 1000 Hz.
Values grid() {
    return ramp(-995, 200, 10);
}

template <class Density>
Values bins(Density density) {
    Values result;
    for (const double frequency : grid()) {
        result.push_back(density(frequency));
    }
    return result;
}

ChannelMeasurements densityMeasurement(double start, double stop) {
    ChannelMeasurements measurement;
    measurement.setSpectrumType(powerDensity);
    measurement.setSpectrumUnits(wattsPerHz);
    measurement.setStartFrequency(start);
    measurement.setStopFrequency(stop);
    return measurement;
}

channelMeasurementsStruct measure(ChannelMeasurements& measurement, const Values& spectrum,
                                  const Values& frequencies = grid()) {
    Values padded = spectrum;
    padded.insert(padded.begin(), {1e9, 1e9});
    return measurement.computeChannelMeasurements(frequencies.data(), padded.data(), {2, padded.size()});
}

// Sums of some 200 terms of one size, each good to half an ulp: relative errors well below 1e-13.
constexpr double relative = 1e-12;

TEST(ChannelMeasurements, MeasuresPowerAndOccupiedBandOfFlatAndSteppedDensities) {
    const auto flat = [](double) { return 0.25; };
    const auto step = [](double f) { return f < 100 ? 1.0 : 3.0; };
    const struct {
        const char* why;
        double start, stop, percent;
        Values spectrum;
        double power, lower, upper;
    } rows[] = {
        {"aligned, off centre", -300, 700, 99, bins(flat), 250, -295, 695},
        {"edges inside bins", -303, 704, 90, bins(flat), 251.75, -252.65, 653.65},
        {"band inside one bin", 1, 3, 50, bins(flat), 0.5, 1.5, 2.5},
        // 400 W, 2 W left out on either side: 2 Hz at 1 W/Hz and 2/3 Hz at 3 W/Hz
        {"a step", 0, 200, 99, bins(step), 400, 2, 200 - 2.0 / 3},
        {"no width on a bin edge", 100, 100, 99, bins(flat), 0, nan, nan},
        {"all of the power: nothing exceeds it", -300, 700, 100, bins(flat), 250, -300, nan},
        {"half a bin more than all", -300, 705, 100, bins(flat), 251.25, -300, 705},
        {"more than all", -300, 705, 100.5, bins(flat), 251.25, nan, nan},
        {"below nothing", -300, 700, -101, bins(flat), 250, nan, nan},
        {"all zero", -300, 700, 99, Values(200, 0.0), 0, nan, nan},
        {"out of order", 1, -1, 99, bins(flat), nan, nan, nan},
        {"a hair outside", -1000, std::nextafter(1000.0, 2000.0), 99, bins(flat), nan, nan, nan},
        {"a NaN bin", -300, 700, 99, bins([](double f) { return f == 5 ? nan : 1.0; }), nan, nan, nan},
        {"NaN edge", nan, 1, 99, bins(flat), nan, nan, nan},
        {"one bin", -1, 1, 99, {1}, nan, nan, nan},
        {"no bin", -1, 1, 99, {}, nan, nan, nan},
    };
    for (const auto& row : rows) {
        ChannelMeasurements measurement = densityMeasurement(row.start, row.stop);
        measurement.setPercentOccupiedBW(row.percent);
        const auto result = measure(measurement, row.spectrum);
        SCOPED_TRACE(row.why);
        expectValues({result.channelPower, result.startFrequency, result.stopFrequency, result.occupiedBW,
                      result.frequencyError},
                     {decibels(row.power), row.lower, row.upper, row.upper - row.lower,
                      (row.upper + row.lower - row.start - row.stop) / 2},
                     1e-11);
        EXPECT_TRUE(result.isNewDataReady);
    }
}

// The channel is 200 Hz wide and flat at 1; bands beyond 100 Hz are flat at 1e-4.
TEST(ChannelMeasurements, MeasuresAdjacentChannelsThroughChannelFilters) {
    const Values spectrum = bins([](double f) { return std::abs(f) < 100 ? 1.0 : f > 0 ? 1e-4 : 1e-5; });
    const double width = 200;
    // Areas of the responses over the main channel and over an adjacent one of twice its width.
    const double rollOff = 0.22;
    const double rrcMain = width * (1 - rollOff * (0.5 - 1 / std::numbers::pi));
    const double coefficient = 0.4;
    const auto gaussianArea = [=](double bandwidth) {
        const double rootLn2 = std::sqrt(std::numbers::ln2);
        return coefficient * width * std::sqrt(std::numbers::pi) / rootLn2 *
               std::erf(rootLn2 * bandwidth / (2 * coefficient * width));
    };
    const struct {
        FilterShape shape;
        double coefficient, adjacentWidth, mainArea, adjacentArea;
        double tolerance;  // relative; midpoint rule over bins of df: df^2 / 24 times twice the slope at the band edge
    } rows[] = {
        {FilterShape::none, 0.5, 100, 200, 100, relative},
        {FilterShape::rrc, rollOff, 400, rrcMain, width, 2e-3},
        {FilterShape::rrc, 0, 400, width, width, relative},
        {FilterShape::gaussian, coefficient, 400, gaussianArea(200), gaussianArea(400), 1e-3},
    };
    for (const auto& row : rows) {
        ChannelMeasurements measurement = densityMeasurement(-100, 100);
        measurement.setType(Type::acpr);
        measurement.setFilterShape(row.shape);
        measurement.setFilterCoeff(row.coefficient);
        measurement.setAdjacentBW(row.adjacentWidth);
        measurement.setACPROffsets({400, 900, 600});
        measurement.setNumOffsets(4);
        const auto result = measure(measurement, spectrum);
        const double tolerance = 4.4 * row.tolerance;
        const double ratio = decibels(row.adjacentArea / row.mainArea);
        EXPECT_NEAR(result.channelPower, decibels(row.mainArea), tolerance);
        ASSERT_EQ(result.acprUpper.size(), 4u);
        ASSERT_EQ(result.acprLower.size(), 4u);
        for (const std::size_t i : {0u, 2u}) {
            EXPECT_NEAR(result.acprUpper[i], ratio - 40, 2 * tolerance) << i;
            EXPECT_NEAR(result.acprLower[i], ratio - 50, 2 * tolerance) << i;
        }
        const bool fits = row.adjacentWidth == 100;  // 900 + 50 Hz lies on the grid, 900 + 200 Hz doesn't
        EXPECT_EQ(std::isnan(result.acprUpper[1]), !fits);
        EXPECT_TRUE(std::isnan(result.acprLower[3]) && std::isnan(result.acprUpper[3])) << "beyond the list";
    }
}

TEST(ChannelMeasurements, TakesAnOffsetAndKeepsTheFiguresOfTheOtherType) {
    ChannelMeasurements measurement = densityMeasurement(4900, 5100);
    measurement.setFrequencyOffset(5000);
    measure(measurement, Values(200, 1.0));
    measurement.setType(Type::acpr);
    measurement.setNumOffsets(0);
    auto result = measure(measurement, Values(200, 2.0));
    EXPECT_EQ(result.type, Type::acpr);
    EXPECT_NEAR(result.occupiedBW, 198, 1e-10);
    EXPECT_NEAR(result.channelPower, decibels(400), 1e-11);
    EXPECT_TRUE(result.acprLower.empty());
    measurement.setRBW(infinity);
    EXPECT_TRUE(std::isnan(measure(measurement, Values(200, 2.0)).channelPower));
    EXPECT_THROW(measurement.getTypeEnum("obw"), std::out_of_range);
}

}  // namespace
