#include "SpectrumMeasurementsUtils.h"

#include "Test.h"

namespace {

using namespace SpectrumMeasurementsUtils;
using Range = std::vector<unsigned long>;

// A level of 100 dB in double precision is good to 1e-14; the powers below reach 1e4 and are good to a few ulp.
constexpr double relative = 1e-14;

TEST(SpectrumMeasurementsUtils, CutsOneChannelToNonNegativeFrequencies) {
    const Values frame{-9, -9, 1, 2, 3, 4, -9};
    const struct {
        Values grid;
        double offset;
        Values frequencies, bins;
    } rows[] = {
        {{-2, -1, 0, 1}, 0, {0, 1}, {3, 4}},
        {{-2, -1, 0, 1}, 1.5, {0.5, 1.5, 2.5}, {2, 3, 4}},  // the cut is judged after the offset
        {{-2, -1, 0, 1}, -3, {}, {}},
        {{0, 1, 2, 3}, 0, {0, 1, 2, 3}, {1, 2, 3, 4}},
        {{5, 6, 7, 8}, -4, {1, 2, 3, 4}, {1, 2, 3, 4}},
    };
    for (const auto& row : rows) {
        Values frequencies{7, 7, 7}, bins{7};
        computeOneSidedFrequencyAndSpectrumInRange(row.grid.data(), frame.data(), {2, 6}, frequencies, bins,
                                                   row.offset);
        EXPECT_EQ(frequencies, row.frequencies);
        EXPECT_EQ(bins, row.bins);
    }
    Values frequencies{1}, bins{1};
    computeOneSidedFrequencyAndSpectrumInRange(nullptr, nullptr, {0, 0}, frequencies, bins, -1);
    EXPECT_TRUE(frequencies.empty() && bins.empty());
}

TEST(SpectrumMeasurementsUtils, CutsAllChannelsOfAFrame) {
    const Values frame{-1, 0, 1, 10, 11, 12, 20, 21, 22};
    Values frequencies, bins;
    computeOneSidedFrequencyAndSpectrum(frame.data(), frame.data(), 3, 2, frequencies, bins, 0.5);
    EXPECT_EQ(frequencies, (Values{0.5, 1.5}));
    EXPECT_EQ(bins, (Values{11, 12, 21, 22}));
    computeOneSidedFrequencyAndSpectrum(nullptr, nullptr, 0, 2, frequencies, bins, 0.5);
    EXPECT_TRUE(frequencies.empty() && bins.empty());
}

// To a density with a resolution bandwidth of 4, and a tone of power 4e10 to its displayed form; 0 is not looked at.
TEST(SpectrumMeasurementsUtils, ConvertsWholeSpectra) {
    using enum SpectrumMeasurementsEnum::SpectrumType;
    using enum SpectrumMeasurementsEnum::SpectrumUnits;
    const struct {
        SpectrumType type;
        SpectrumUnits units;
        double in, density, displayed;
    } rows[] = {
        {powerDensity, dbmPerHz, 30, 1000, 100},
        {powerDensity, wattsPerHz, 30, 30, 1e10},
        {power, dbm, 30, 250, 106.0205999132796},
        {power, watts, 30, 7.5, 4e10},
        {power, vrms, 20, 25, 0},
        {rms, vrms, 20, 1e4, 10},
        {rms, watts, 3, 9, 0},
        {rms, dbv, 10, 10, 20},
        {rms, dbuv, 20, 0.01, 100},
    };
    for (const auto& row : rows) {
        Values x{row.in, row.in}, tone{4e10};
        computePSDInWattsFromSpectrum(x, 4, row.type, row.units);
        EXPECT_NEAR(x[1], row.density, relative * row.density) << static_cast<int>(row.units);
        computeSpectrumFromPSD(tone, 4, row.type, row.units);
        if (row.displayed != 0) {
            EXPECT_NEAR(tone[0], row.displayed, relative * row.displayed) << static_cast<int>(row.units);
        }
    }
    Values level{30};
    computePSDFromSpectrum(level, 100, power, watts);
    EXPECT_DOUBLE_EQ(level[0], 10);
    computePSDFromSpectrum(level, 100, rms, dbm);
    EXPECT_DOUBLE_EQ(level[0], 10);
}

TEST(SpectrumMeasurementsUtils, ConvertsBinsOfARangeOnly) {
    const double floorLevel = -3233.0621534311581;  // 10 log10(2^-1074)
    const struct {
        const char* name;
        void (*convert)(Values&, const Range&);
        double ofZero, ofFour;
    } rows[] = {
        {"dBm", [](Values& x, const Range& r) { watts2dB(x, x, r, 30); }, 30 + floorLevel, 36.020599913279625},
        {"dBFS", [](Values& x, const Range& r) { watts2dBFS(x, x, r, 1); }, 2 * floorLevel, 0},
        {"Vrms", [](Values& x, const Range& r) { watts2Vrms(x, x, r); }, 0, 2},
        {"dBV", [](Values& x, const Range& r) { watts2dBV(x, x, r); }, 2 * floorLevel, 6.0205999132796242},
        {"dBuV", [](Values& x, const Range& r) { watts2dBuV(x, x, r); }, 2 * floorLevel + 120, 126.02059991327963},
        {"dB to W", [](Values& x, const Range& r) { dB2Watts(x, x, r, 4); }, 0.39810717055349726, 1},
        {"Vrms to W", [](Values& x, const Range& r) { vrms2Watts(x, x, r, 2); }, 0, 8},
        {"dBV to W", [](Values& x, const Range& r) { dBV2Watts(x, x, r, 2); }, 0.5, 1.2559432157547901},
        {"dBuV to W", [](Values& x, const Range& r) { dBuV2Watts(x, x, r, 2); }, 5e-13, 1.2559432157547901e-12},
    };
    for (const auto& row : rows) {
        Values x{0, 4, nan, 4};
        row.convert(x, {1, 3});
        EXPECT_EQ(x[0], 0) << row.name;
        EXPECT_NEAR(x[1], row.ofFour, relative * row.ofFour) << row.name;
        EXPECT_TRUE(std::isnan(x[2])) << row.name;
        EXPECT_EQ(x[3], 4) << row.name;
        row.convert(x, {0, 1});
        EXPECT_NEAR(x[0], row.ofZero, relative * std::abs(row.ofZero)) << row.name;
        row.convert(x, {3, 100});  // a range that reaches past the vector stops at its end
        EXPECT_EQ(x[3], x[1]) << row.name;
    }
}

TEST(SpectrumMeasurementsUtils, CountsAllButWattsAsDecibelsAndRefusesUnknownKeys) {
    const auto keys = SpectrumMeasurementsEnum::spectrumUnitsKeys();
    for (const auto& [key, units] : keys) {
        EXPECT_EQ(isdBSpectrumUnits(units), !key.starts_with("watts")) << key;
    }
    try {
        enumAt(keys, "Watts");
        FAIL() << "an unknown key must throw";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "unordered_map::at: key not found");
    }
}

}  // namespace
