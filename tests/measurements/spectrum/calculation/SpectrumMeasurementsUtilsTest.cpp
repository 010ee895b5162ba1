#include "SpectrumMeasurementsUtils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace dspwavedecks;
using namespace dspwavedecks::SpectrumMeasurementsUtils;
using Values = std::vector<double>;
using Range = std::vector<unsigned long>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

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

TEST(SpectrumMeasurementsUtils, ConvertsDisplayedSpectrumToDensity) {
    using enum SpectrumMeasurementsEnum::SpectrumType;
    using enum SpectrumMeasurementsEnum::SpectrumUnits;
    const struct {
        SpectrumType type;
        SpectrumUnits units;
        double in, density;
    } rows[] = {
        {powerDensity, dbmPerHz, 30, 1000},
        {powerDensity, wattsPerHz, 30, 30},
        {power, dbm, 30, 250},
        {power, watts, 30, 7.5},
        {power, vrms, 20, 25},
        {rms, vrms, 20, 1e4},
        {rms, dbv, 10, 10},
        {rms, dbuv, 20, 0.01},
        {rms, watts, 3, 9},
    };
    for (const auto& row : rows) {
        Values x{row.in, row.in};
        computePSDInWattsFromSpectrum(x, 4, row.type, row.units);
        EXPECT_NEAR(x[1], row.density, relative * row.density) << row.in << ' ' << static_cast<int>(row.units);
    }
    Values level{30};
    computePSDFromSpectrum(level, 100, power, watts);
    EXPECT_DOUBLE_EQ(level[0], 10);
    computePSDFromSpectrum(level, 100, rms, dbm);
    EXPECT_DOUBLE_EQ(level[0], 10);
}

TEST(SpectrumMeasurementsUtils, ConvertsTonePowerToDisplayedForm) {
    using enum SpectrumMeasurementsEnum::SpectrumType;
    using enum SpectrumMeasurementsEnum::SpectrumUnits;
    const struct {
        SpectrumType type;
        SpectrumUnits units;
        double displayed;
    } rows[] = {
        {power, watts, 4e10},
        {power, dbm, 106.02059991327963},
        {powerDensity, dbmPerHz, 100},
        {powerDensity, watts, 1e10},
        {rms, dbuv, 100},
        {rms, vrms, 10},
        {rms, dbv, 20},
    };
    for (const auto& row : rows) {
        Values x{4e10};
        computeSpectrumFromPSD(x, 4, row.type, row.units);
        EXPECT_NEAR(x[0], row.displayed, relative * row.displayed) << static_cast<int>(row.units);
    }
}

TEST(SpectrumMeasurementsUtils, ConvertsBinsOfARangeOnly) {
    const Values source{nan, 0, 1e-3, 4, infinity, nan};
    const Range range{1, 5};
    const double floorLevel = -3233.0621534311581;  // 10 log10(2^-1074)
    const struct {
        const char* name;
        void (*convert)(Values&, const Range&);
        Values expected;
    } rows[] = {
        {"dBm",
         [](Values& x, const Range& r) { watts2dB(x, x, r, 30); },
         {30 + floorLevel, 0, 36.020599913279625, infinity}},
        {"dBFS",
         [](Values& x, const Range& r) { watts2dBFS(x, x, r, 2); },
         {2 * floorLevel, -36.020599913279625, 0, 0}},
        {"Vrms", [](Values& x, const Range& r) { watts2Vrms(x, x, r); }, {0, 0.031622776601683791, 2, infinity}},
        {"dBV",
         [](Values& x, const Range& r) { watts2dBV(x, x, r); },
         {2 * floorLevel, -30, 6.0205999132796242, infinity}},
        {"dBuV",
         [](Values& x, const Range& r) { watts2dBuV(x, x, r); },
         {2 * floorLevel + 120, 90, 126.02059991327963, infinity}},
        {"dB to watts",
         [](Values& x, const Range& r) { dB2Watts(x, x, r, 4); },
         {0.39810717055349726, 0.39819884867155864, 1, infinity}},
        {"Vrms to watts", [](Values& x, const Range& r) { vrms2Watts(x, x, r, 2); }, {0, 5e-7, 8, infinity}},
        {"dBV to watts",
         [](Values& x, const Range& r) { dBV2Watts(x, x, r, 2); },
         {0.5, 0.50011514251041225, 1.2559432157547901, infinity}},
        {"dBuV to watts",
         [](Values& x, const Range& r) { dBuV2Watts(x, x, r, 2); },
         {5e-13, 5.0011514251041225e-13, 1.2559432157547901e-12, infinity}},
    };
    for (const auto& row : rows) {
        Values x = source;
        row.convert(x, range);
        EXPECT_TRUE(std::isnan(x[0]) && std::isnan(x[5])) << row.name;
        for (std::size_t i = 1; i < 5; ++i) {
            const double expected = row.expected[i - 1];
            if (std::isinf(expected)) {
                EXPECT_EQ(x[i], expected) << row.name << ' ' << i;
            } else {  // levels are sums of logarithms: an absolute bound below 100 dB
                EXPECT_NEAR(x[i], expected, std::abs(expected) * relative + (expected == 0 ? 1e-14 : 0))
                    << row.name << ' ' << i;
            }
        }
        row.convert(x, {0, 100});  // a range that reaches past the vector stops at its end
        EXPECT_TRUE(std::isnan(x[0])) << row.name;
    }
    Values clipped{nan};
    watts2dBFS({nan}, clipped, {0, 1}, 1);
    EXPECT_TRUE(std::isnan(clipped[0]));
}

TEST(SpectrumMeasurementsUtils, NumbersTheKeysAsTheyAreStored) {
    const char* units[] = {"watts", "dbw",      "dbm",    "dbfs",   "vrms",   "dbv",
                           "dbuv",  "watts/hz", "dbw/hz", "dbm/hz", "dbfs/hz"};
    const auto unitKeys = SpectrumMeasurementsEnum::spectrumUnitsKeys();
    for (unsigned i = 0; i < std::size(units); ++i) {
        EXPECT_EQ(static_cast<unsigned>(enumAt(unitKeys, units[i])), i);
        EXPECT_EQ(isdBSpectrumUnits(enumAt(unitKeys, units[i])), i != 0 && i != 7);
    }
    const auto typeKeys = SpectrumMeasurementsEnum::spectrumTypeKeys();
    EXPECT_EQ(static_cast<unsigned>(enumAt(typeKeys, "power-density")), 1u);
    EXPECT_EQ(static_cast<unsigned>(enumAt(typeKeys, "rms")), 2u);
    try {
        enumAt(typeKeys, "Power");
        FAIL() << "an unknown key must throw";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "unordered_map::at: key not found");
    }
}

}  // namespace
