#include "PhaseNoise.h"

#include "Test.h"

namespace {

using enum SpectrumMeasurementsEnum::SpectrumType;

constexpr double binWidth = 50;
constexpr double rbw = 20;

/// dBc/Hz at an offset, falling by 20 dB a decade from -70 at 1 kHz.
double skirt(double offset) {
    return -70 - 20 * std::log10(offset / 1000);
}

/// A block of levels in dBm in one resolution bandwidth: a carrier with its skirt on both sides.
Values carrierBlock(std::size_t count, std::size_t carrier, double level) {
    Values block;
    for (std::size_t k = 0; k < count; ++k) {
        const double offset = binWidth * std::abs(static_cast<double>(k) - static_cast<double>(carrier));
        block.push_back(k == carrier ? level : level + skirt(offset) + 10 * std::log10(rbw));
    }
    return block;
}

Values frame(double firstFrequency, const std::vector<Values>& blocks) {
    return joined({ramp(firstFrequency, blocks.front().size(), binWidth), joined(blocks)});
}

PhaseNoise measurement(const std::vector<unsigned long>& channels, const Values& spots) {
    PhaseNoise result;
    result.setNumSignals(channels.size());
    for (std::size_t signal = 0; signal < channels.size(); ++signal) {
        result.setNumChannels(signal, channels[signal]);
    }
    result.setRBW(rbw);
    result.setPhaseNoiseFrequencyOffset(spots);
    return result;
}

phaseNoiseStruct measure(PhaseNoise& noise, unsigned long signal, const Values& data, std::size_t numPoints) {
    noise.setFrameSize(signal, numPoints);
    return noise.computePhaseNoise(signal, data.data(), data.data());
}

constexpr double tolerance = 1e-12;  // a few operations on levels of about 100

TEST(PhaseNoise, MeasuresASkirtOfKnownLevel) {
    // The type shifts all densities alike: the curve is the same.
    for (const auto type : {power, powerDensity}) {
        PhaseNoise noise = measurement({2}, {1000, 2000, 2025, 5000});
        noise.setSpectrumType(type);
        noise.setFrequencyOffset(-1e6);
        Values loud = carrierBlock(400, 120, 10);
        loud[0] = 30;  // the lowest bin is no carrier
        const auto result = measure(noise, 0, frame(1e6, {loud, carrierBlock(400, 40, -20)}), 400);
        EXPECT_TRUE(result.isNewDataReady);
        // From 500 to 10000 Hz in steps of 50, both included.
        ASSERT_EQ(result.numPoints[0], (std::vector<unsigned long>{191, 191}));
        EXPECT_EQ(result.frequencyOffsetLimits, (Values{500, 10000}));
        expectValues(result.phaseNoiseLimits, {skirt(10000), skirt(500)}, tolerance);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            expectValues(result.spotPhaseNoise[0][channel],
                         {skirt(1000), skirt(2000), (skirt(2000) + skirt(2050)) / 2, skirt(5000)}, tolerance);
            EXPECT_EQ(result.frequencyOffset[0][channel][3], 650);
            EXPECT_NEAR(result.phaseNoise[0][channel][3], skirt(650), tolerance);
        }
    }
}

TEST(PhaseNoise, ReadsNaNBesideTheCurve) {
    // The curve holds the offsets 50 to 150: spots on its last point and beyond, and below its first point.
    PhaseNoise noise = measurement({1}, {20, 100, 149, 150, 151});
    const auto result = measure(noise, 0, frame(0, {carrierBlock(10, 6, 0)}), 10);
    EXPECT_EQ(result.numPoints[0][0], 3u);
    const double almost150 = (skirt(100) + 49 * skirt(150)) / 50;
    expectValues(result.spotPhaseNoise[0][0], {nan, skirt(100), almost150, nan, nan}, tolerance);
    // A shorter curve later on: what an earlier one left behind its points is not read.
    const auto shorter = measure(noise, 0, frame(0, {carrierBlock(10, 7, 0)}), 10);
    EXPECT_EQ(shorter.numPoints[0][0], 2u);
    EXPECT_TRUE(std::isnan(shorter.spotPhaseNoise[0][0][2]));
    noise.setSpectrumType(powerDensity);
    noise.setRBW(infinity);
    EXPECT_TRUE(std::isnan(measure(noise, 0, frame(0, {carrierBlock(10, 6, 0)}), 10).phaseNoise[0][0][0]));
}

TEST(PhaseNoise, LeavesAChannelWithoutRoomAboveItsCarrierAlone) {
    PhaseNoise noise = measurement({1}, {100});
    measure(noise, 0, frame(0, {carrierBlock(10, 2, 0)}), 10);
    const auto kept = measure(noise, 0, frame(0, {carrierBlock(10, 9, 0)}), 10);
    EXPECT_EQ(kept.numPoints[0][0], 4u);
    EXPECT_EQ(kept.frequencyOffsetLimits, (Values{infinity, -infinity}));
    EXPECT_EQ(kept.maxNumPoints, 0u);
    for (const std::size_t bins : {0u, 1u}) {
        EXPECT_EQ(measure(noise, 0, frame(0, {Values(bins, 0.0)}), bins).numPoints[0][0], 4u);
    }
    noise.setPhaseNoiseFrequencyOffset({});
    EXPECT_EQ(measure(noise, 0, frame(0, {carrierBlock(10, 2, 0)}), 10).numPoints[0][0], 0u);
    noise.setPhaseNoiseFrequencyOffset({1e6});  // far above the grid: a curve without points
    const auto none = measure(noise, 0, frame(0, {carrierBlock(10, 2, 0)}), 10);
    EXPECT_EQ(none.numPoints[0][0], 0u);
    EXPECT_TRUE(std::isnan(none.spotPhaseNoise[0][0][0]));
    measure(noise, 7, {}, 0);
}

TEST(PhaseNoise, TakesLimitsOverAllSignalsOfAPass) {
    PhaseNoise noise = measurement({1, 1}, {100, 200});
    EXPECT_FALSE(measure(noise, 0, frame(0, {carrierBlock(40, 10, 0)}), 40).isNewDataReady);
    Values odd = carrierBlock(20, 5, 0);
    odd[7] = nan;  // offset 100
    odd[8] = -1;
    const auto result = measure(noise, 1, frame(0, {odd}), 20);
    EXPECT_EQ(result.frequencyOffsetLimits, (Values{50, 400}));
    expectValues(result.phaseNoiseLimits, {skirt(400), -1 - 10 * std::log10(rbw)}, tolerance);
    EXPECT_TRUE(std::isnan(result.phaseNoise[1][0][1]));
    noise.setNumSignals(1);
    measure(noise, 1, {}, 0);
    EXPECT_EQ(measure(noise, 0, frame(0, {carrierBlock(40, 10, 0)}), 40).phaseNoise.size(), 1u);
}

}  // namespace
