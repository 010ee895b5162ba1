#include "SpectralMaskTester.h"
#include "Test.h"

namespace {

using Ids = std::vector<unsigned long>;
using EnabledMasks = SpectralMaskTesterEnum::EnabledMasks;
using ReferenceLevel = SpectralMaskTesterEnum::ReferenceLevel;

/// The grid -2000 .. 2000 Hz in steps of 1 Hz, and one block a channel: a floor with one bin that differs.
constexpr std::size_t numPoints = 4001;

struct Bin {
    double frequency;
    double level;
};

Values frame(const std::vector<Bin>& channels, double gridShift = 0) {
    Values data = ramp(gridShift - 2000, numPoints);
    for (const Bin& bin : channels) {
        data.insert(data.end(), numPoints, -50.0);
        data[data.size() - numPoints + static_cast<std::size_t>(bin.frequency + 2000)] = bin.level;
    }
    return data;
}

/// Upper line of -10 between -100 and 100 Hz, lower line of -60 at 1000 Hz and beyond.
SpectralMaskTester tester(EnabledMasks masks) {
    SpectralMaskTester result;
    result.setEnabledMasks(masks);
    result.setUpperMask({-100, 100, -10, -10});
    result.setLowerMask({1000, 2000, -60, -60});
    return result;
}

void setUp(SpectralMaskTester& tester, const Values& data, const std::vector<int>& channels,
           const std::vector<int>& complexities) {
    tester.setup(data.data(), static_cast<int>(channels.size()), numPoints, channels, complexities);
}

TEST(SpectralMaskTester, ComparesBinsWithTheEnabledLines) {
    const struct {
        const char* why;
        EnabledMasks masks;
        Bin bin;
        bool upper, lower;
    } rows[] = {
        {"above the upper line", EnabledMasks::upper, {0, -9}, false, true},
        {"on the upper line", EnabledMasks::upper, {0, -10}, true, true},
        {"beside it", EnabledMasks::upper, {101, 99}, true, true},
        {"NaN", EnabledMasks::upperAndLower, {0, nan}, true, true},
        {"below the lower line", EnabledMasks::lower, {2000, -61}, true, false},
        {"above an upper line that is off", EnabledMasks::lower, {0, -9}, true, true},
        {"both lines", EnabledMasks::upperAndLower, {1000, -60.5}, true, false},
    };
    for (const auto& row : rows) {
        SpectralMaskTester mask = tester(row.masks);
        const Values data = frame({row.bin});
        setUp(mask, data, {1}, {0});
        const auto status = *mask.performMaskTest(data.data(), 0, numPoints, true);
        const bool passed = row.upper && row.lower;
        EXPECT_EQ(status.upperMaskStatus, row.upper) << row.why;
        EXPECT_EQ(status.lowerMaskStatus, row.lower) << row.why;
        EXPECT_EQ(status.currentStatus, passed ? "passing" : "failing") << row.why;
        EXPECT_EQ(status.failingMasks, passed ? "" : "Upper and lower") << row.why;
        EXPECT_EQ(status.failingChannels, passed ? Ids{} : Ids{0}) << row.why;
        EXPECT_EQ(status.numTotalTests, 1) << row.why;
        EXPECT_EQ(status.successRate, passed ? 100 : 0) << row.why;
    }
}

// Signal 0 is complex with two channels, signal 1 real with three.
TEST(SpectralMaskTester, NumbersChannelsOverSignalsAndTakesThePeakOfSignalZero) {
    SpectralMaskTester mask = tester(EnabledMasks::upper);
    mask.setReferenceLevel(ReferenceLevel::spectrumPeak);
    mask.setCustomReferenceLevel(-35);
    mask.setSelectedChannel(1);
    mask.setFrequencyOffset({0, 0, 0, 500});
    const Values first = frame({{0, 0}, {1000, 5}});
    const Values second = frame({{0, -44}, {0, 0}, {0, -46}});
    setUp(mask, first, {4, 3}, {1, 0});
    EXPECT_EQ(mask.getTotalNumChannels(), 5);
    EXPECT_EQ(mask.getChannelIdx(1, 2), 4u);
    const spectralMaskStruct* status = mask.performMaskTest(first.data(), 0, numPoints, true);
    EXPECT_EQ(status->spectrumPeak, 5);
    EXPECT_EQ(status->numTotalTests, 0) << "the counts wait for the last signal";
    EXPECT_TRUE(status->isNewDataReady);
    mask.performMaskTest(second.data(), 1, numPoints, true);
    EXPECT_EQ(status->spectrumPeak, -35);
    // The line lies at -5 for signal 0, at -45 for signal 1; channel 3 is shifted out of the line with its strong bin.
    EXPECT_EQ(status->failingChannels, (Ids{0, 2}));
    mask.setSelectedChannel(2);
    mask.performMaskTest(first.data(), 0, numPoints, true);
    EXPECT_TRUE(std::isnan(status->spectrumPeak)) << "a channel that is not there";
}

TEST(SpectralMaskTester, CountsTestsAndReplacesTheLastOneOnReplay) {
    SpectralMaskTester mask = tester(EnabledMasks::upper);
    const Values good = frame({{0, -11}});
    const Values bad = frame({{0, -9}});
    setUp(mask, good, {1}, {0});
    const struct {
        bool isGood, isNew;
        double passed, total;
    } rows[] = {{true, false, 1, 1}, {false, false, 0, 1}, {true, false, 1, 1}, {true, true, 2, 2},
                {false, true, 2, 3}, {true, true, 3, 4},   {false, false, 2, 4}};
    const spectralMaskStruct* status = nullptr;
    for (const auto& row : rows) {
        status = mask.performMaskTest((row.isGood ? good : bad).data(), 0, numPoints, row.isNew);
        EXPECT_EQ(status->numPassedTests, row.passed);
        EXPECT_EQ(status->numTotalTests, row.total);
        EXPECT_EQ(status->successRate, row.passed / row.total * 100);
    }
    mask.reset();
    EXPECT_TRUE(mask.isLocked());
    EXPECT_EQ(status->numTotalTests, 0);
    EXPECT_EQ(status->currentStatus, "passing");
}

TEST(SpectralMaskTester, NamesTheMaskWhereALastSignalWithoutChannelsPasses) {
    SpectralMaskTester mask = tester(EnabledMasks::upperAndLower);
    const Values data = frame({{0, -9}});
    setUp(mask, data, {1, 0}, {0, 0});
    mask.performMaskTest(data.data(), 0, numPoints, true);
    const auto status = *mask.performMaskTest(data.data(), 1, numPoints, true);
    EXPECT_TRUE(status.isCurrentlyPassing);
    EXPECT_FALSE(status.upperMaskStatus);
    EXPECT_EQ(status.failingMasks, "Upper");
    EXPECT_EQ(status.failingChannels, (Ids{0}));
}

TEST(SpectralMaskTester, FollowsTheGridOfTheFrames) {
    SpectralMaskTester mask = tester(EnabledMasks::upper);
    const Values data = frame({{0, -9}});
    mask.setup(data.data(), 1, 0, {1}, {0});
    EXPECT_FALSE(mask.isLocked()) << "a frame without points";
    EXPECT_TRUE(mask.performMaskTest(data.data(), 0, 0, true)->isCurrentlyPassing);
    setUp(mask, data, {1}, {0});
    EXPECT_TRUE(mask.isLocked());
    EXPECT_FALSE(mask.performMaskTest(data.data(), 0, numPoints, true)->isCurrentlyPassing);
    const Values shifted = frame({{0, -9}}, 101);
    EXPECT_TRUE(mask.performMaskTest(shifted.data(), 0, numPoints, true)->isCurrentlyPassing);
    const Values narrow{-1, 0, 1, -50, -9, -50};
    EXPECT_FALSE(mask.performMaskTest(narrow.data(), 0, 3, true)->isCurrentlyPassing);
    mask.setFrequencyOffset({200});
    EXPECT_TRUE(mask.performMaskTest(data.data(), 0, numPoints, true)->isCurrentlyPassing);
    mask.setFrequencyOffset({});
    EXPECT_FALSE(mask.performMaskTest(data.data(), 0, numPoints, true)->isCurrentlyPassing) << "none for the channel";
    EXPECT_EQ(mask.performMaskTest(data.data(), 0, numPoints, true)->numTotalTests, 7);
}

}  // namespace
