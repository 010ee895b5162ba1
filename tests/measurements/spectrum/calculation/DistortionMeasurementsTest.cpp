#include "DistortionMeasurements.h"

#include <map>

#include "Test.h"

namespace {

using Type = DistortionMeasurementEnum::Type;
using enum SpectrumMeasurementsEnum::SpectrumType;
using enum SpectrumMeasurementsEnum::SpectrumUnits;

double ratio(double level) {
    return std::pow(10, level / 10);
}

constexpr double binWidth = 10;
constexpr double rbw = 25;
// A floor of two levels in turn: the hill of a tone on an even bin is the bin and its two neighbours.
constexpr double evenFloor = -80;
constexpr double oddFloor = -83;

/// Levels in dBm on bins 0 .. 400, from 0 Hz on.
Values levels(const std::map<std::size_t, double>& tones, std::size_t count = 401) {
    Values result;
    for (std::size_t k = 0; k < count; ++k) {
        result.push_back(tones.contains(k) ? tones.at(k) : k % 2 == 0 ? evenFloor : oddFloor);
    }
    return result;
}

distortionStruct measure(DistortionMeasurements& measurement, const Values& spectrum, double firstFrequency = 0) {
    const Values frequencies = ramp(firstFrequency, spectrum.size(), binWidth);
    measurement.setRBW(rbw);
    return measurement.computeDistortion(frequencies.data(), spectrum.data(), {0, spectrum.size()});
}

// Levels near 100 dB through powers of ten and logarithms: some 1e-14 each, sums of 400 terms below 1e-13 relative.
constexpr double tolerance = 1e-11;

TEST(DistortionMeasurements, MeasuresAToneWithHarmonicsOfKnownLevels) {
    for (const double offset : {0.0, -2000.0}) {
        DistortionMeasurements measurement;
        measurement.setFrequencyOffset(-offset);
        const auto result = measure(measurement, levels({{50, 0}, {100, -40}, {150, -50}, {250, -60}}), offset);
        const double even = ratio(evenFloor);
        const double odd = ratio(oddFloor);
        // Orders 4 and 6 are floor. Two bins are wiped at 0 Hz and three for each of six tones; of the others 194 are
        // even and 187 odd, so that the median is the even level.
        const double harmonics = ratio(-40) + ratio(-50) + ratio(-60) + 2 * even;
        const double noise = binWidth / rbw * ((194 + 20) * even + 187 * odd);
        EXPECT_EQ(result.numHarmonics, 6u);
        EXPECT_NEAR(result.thd, decibels(harmonics), tolerance);
        EXPECT_NEAR(result.thdPercent, 100 * std::sqrt(harmonics), tolerance);
        EXPECT_NEAR(result.snr, -decibels(noise), tolerance);
        EXPECT_NEAR(result.sinad, -decibels(harmonics + noise), tolerance);
        EXPECT_NEAR(result.sfdr, 40, tolerance);
        expectValues(result.harmonicPower, {0, -40, -50, evenFloor, -60, evenFloor}, tolerance);
        expectValues(result.harmonicFrequency, ramp(500, 6, 500), tolerance);
    }
}

TEST(DistortionMeasurements, LooksForHarmonicsOfTheCentroid) {
    DistortionMeasurements measurement;
    measurement.setNumHarmonics(2);
    // The tone lies between bins 100 and 101: its second harmonic is that of bin 100.5.
    const auto result = measure(measurement, levels({{100, 0}, {101, 0}, {199, -20}, {201, -30}}));
    EXPECT_EQ(result.harmonicFrequency[0], 1000);
    EXPECT_NEAR(result.harmonicPower[1], -30, tolerance);
    EXPECT_EQ(result.harmonicFrequency[1], 2010);
    EXPECT_NEAR(result.sfdr, 20, tolerance);
}

TEST(DistortionMeasurements, KeepsEntriesOfEarlierSpectraInEveryStep) {
    DistortionMeasurements measurement;
    measurement.setNumHarmonics(3);
    measure(measurement, levels({{100, 30}, {200, -40}, {300, 20}}));
    const auto result = measure(measurement, levels({{150, 30}, {300, -40}}));
    EXPECT_EQ(result.numHarmonics, 2u) << "the third harmonic lies beyond the grid";
    // The third entry held 20, a level then and a power now.
    EXPECT_NEAR(result.sfdr, 30 - decibels(20), tolerance);
    EXPECT_NEAR(result.harmonicPower[2], decibels(20), tolerance);
    EXPECT_NEAR(result.harmonicFrequency[2], 3000, tolerance);
    EXPECT_NEAR(result.thd, -70, tolerance);
}

TEST(DistortionMeasurements, DoublesZeroFrequencyOfAOneSidedSpectrum) {
    // Doubled, bin 0 is no lower than bin 1, and the wipe goes on to the valley in bin 3.
    const Values spectrum = levels({{0, -60}, {1, -58}, {2, -70}, {50, 0}});
    Values snr;
    for (const bool twoSided : {true, false}) {
        DistortionMeasurements measurement;
        measurement.setNumHarmonics(1);
        measurement.setTwoSidedSpectrum(twoSided);
        const auto result = measure(measurement, spectrum);
        snr.push_back(result.snr);
        EXPECT_NEAR(result.sfdr, twoSided ? 58 : -evenFloor, tolerance);
    }
    const double even = ratio(evenFloor);
    const double odd = ratio(oddFloor);
    EXPECT_NEAR(snr[0], -decibels(binWidth / rbw * (ratio(-58) + ratio(-70) + 198 * even + 197 * odd + 4 * even)),
                tolerance);
    EXPECT_NEAR(snr[1], -decibels(binWidth / rbw * (198 * even + 196 * odd + 7 * even)), tolerance);
}

TEST(DistortionMeasurements, GivesNoNoiseWhereTooLittleIsLeft) {
    DistortionMeasurements measurement;
    const auto result = measure(measurement, joined({ramp(-50, 50), ramp(0, 51, -1)}));  // one hill from end to end
    EXPECT_TRUE(std::isnan(result.snr) && std::isnan(result.sinad));
    EXPECT_FALSE(std::isnan(result.thd) || std::isnan(result.sfdr));
}

TEST(DistortionMeasurements, MeasuresTheThirdOrderIntercept) {
    DistortionMeasurements measurement;
    measurement.setType(Type::intermodulation);
    const auto result = measure(measurement, levels({{100, 0}, {120, -3}, {80, -60}, {140, -66}}));
    EXPECT_EQ(result.type, Type::intermodulation);
    EXPECT_EQ(result.numHarmonics, 4u);
    EXPECT_NEAR(result.toi, ((0 + (-3 + 60) / 2.0) + (-3 + (0 + 66) / 2.0)) / 2, tolerance);
    expectValues(result.harmonicFrequency, {1000, 1200, 800, 1400}, tolerance);
    // 2 f2 - f1 beyond the grid: the leftover about the lower product, whose own hill is wiped by then.
    const auto beyond = measure(measurement, levels({{250, 0}, {330, -3}, {170, -60}}));
    EXPECT_NEAR(beyond.harmonicPower[2], -60, tolerance);
    EXPECT_EQ(beyond.harmonicPower[3], -infinity);
}

TEST(DistortionMeasurements, ReadsNaNWhereThereIsNothingToMeasure) {
    for (const Values& spectrum : {Values{}, Values{-10}}) {
        DistortionMeasurements measurement;
        auto result = measure(measurement, spectrum);
        EXPECT_TRUE(std::isnan(result.thd + result.thdPercent) && std::isnan(result.snr) && std::isnan(result.sinad) &&
                    std::isnan(result.sfdr));
        EXPECT_EQ(result.numHarmonics, 0u);
        measurement.setType(Type::intermodulation);
        result = measure(measurement, spectrum);
        EXPECT_TRUE(std::isnan(result.toi) && std::isnan(result.harmonicPower[0]));
    }
    DistortionMeasurements unbounded;
    unbounded.setSpectrumType(powerDensity);
    unbounded.setRBW(infinity);
    EXPECT_TRUE(
        std::isnan(unbounded.computeDistortion(Values{0, 10, 20}.data(), Values{-9, 0, -9}.data(), {0, 3}).thd));
    DistortionMeasurements none;
    none.setNumHarmonics(0);
    const auto result = measure(none, levels({{50, 0}}));
    EXPECT_TRUE(result.harmonicPower.empty());
    EXPECT_EQ(result.numHarmonics, 0u);
    EXPECT_FALSE(std::isnan(result.snr));
    DistortionMeasurements endless;
    endless.setNumHarmonics(std::numeric_limits<unsigned long>::max());
    EXPECT_EQ(measure(endless, levels({{50, 0}})).harmonicPower.size(), 1000u);
    DistortionMeasurements wide;  // windows that reach past either end, and tones on the first and last bins
    for (const std::size_t place : {0u, 1u, 5u}) {
        measure(wide, levels({{place, 0}}, 6));
        measure(wide, levels({{place, nan}}, 6));
    }
    EXPECT_THROW(wide.getTypeEnum("Harmonic"), std::out_of_range);
}

}  // namespace
