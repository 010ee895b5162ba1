#include "FirstLargest.h"
#include "PositiveMedian.h"
#include "SpectrumKernels.h"
#include "Test.h"

namespace {

double sortedMedian(Values x) {
    std::erase_if(x, [](double value) { return !(value > 0); });
    std::sort(x.begin(), x.end());
    return x.empty() ? 0 : (x[(x.size() - 1) / 2] + x[x.size() / 2]) / 2;
}

// Spreads from a few equal values to the whole range of doubles, with the values that are no positive number between.
TEST(PositiveMedian, IsThatOfTheSortedValues) {
    std::mt19937_64 random(11);
    const Values odd{0.0, -1.0, nan, infinity, 0x1p-1074, 1e300};
    Values scratch;
    for (int round = 0; round < 600; ++round) {
        Values x(random() % (round % 10 == 0 ? 5000 : 300));
        const double spread = std::ldexp(1.0, static_cast<int>(random() % 11));
        const double levels = std::ldexp(1.0, static_cast<int>(random() % 30));
        for (double& value : x) {
            const double part = std::floor(static_cast<double>(random() >> 11) * 0x1p-53 * levels) / levels;
            value = random() % 8 == 0 && round % 2 == 0 ? odd[random() % odd.size()] : std::exp2((part - 0.5) * spread);
        }
        ASSERT_EQ(medianOfPositive(x.data(), x.size(), scratch), sortedMedian(x)) << "round " << round;
    }
}

TEST(FirstLargest, IsThatOfThePlainScan) {
    std::mt19937 random(5);
    for (int round = 0; round < 3000; ++round) {
        Values x(random() % (round % 100 == 0 ? 3000 : 40));
        for (double& value : x) {
            value = random() % 12 == 0 ? nan : static_cast<double>(static_cast<int>(random() % 20)) - 10;
        }
        const auto expected = static_cast<std::size_t>(std::max_element(x.begin(), x.end()) - x.begin());
        ASSERT_EQ(firstLargest(x.data(), x.size()), expected) << "round " << round;
    }
}

// Odd lengths and places, NaN, ties with the bound; one bin that fails, at every place in turn.
TEST(SpectrumKernels, AgreeWithPlainLoopsOnEveryInstructionSet) {
    std::mt19937 random(9);
    for (const InstructionSet set : {InstructionSet::portable, InstructionSet::avx2}) {
        if (!isSupported(set)) {
            continue;
        }
        const SpectrumKernels& kernels = spectrumKernels(set);
        for (std::size_t n = 0; n < 40; ++n) {
            Values x(n + 1);
            for (double& value : x) {
                value = random() % 9 == 0 ? nan : static_cast<double>(random() % 9);
            }
            const double* const odd = x.data() + 1;
            std::size_t atMost = 0;
            double largest = 3, smallest = infinity;
            for (std::size_t i = 0; i < n; ++i) {
                atMost += odd[i] <= 3 ? 1 : 0;
                largest = odd[i] > largest ? odd[i] : largest;
                smallest = odd[i] > 3 && odd[i] < smallest ? odd[i] : smallest;
            }
            EXPECT_EQ(kernels.countAtMost(odd, n, 3), atMost);
            EXPECT_EQ(kernels.largestAbove(odd, n, 3), largest);
            EXPECT_EQ(kernels.smallestAbove(odd, n, 3), smallest);
        }
        constexpr std::size_t numBins = 1100;
        const Values line(numBins, 2.0);
        for (std::size_t failing = 0; failing <= numBins; failing += 1 + failing / 50) {
            Values bins(numBins, 5.0);  // on the line: the reference is 3
            bins[(failing + 1) % numBins] = nan;
            EXPECT_FALSE(kernels.anyAbove(bins.data(), line.data(), 3, numBins));
            EXPECT_FALSE(kernels.anyBelow(bins.data(), line.data(), 3, numBins));
            if (failing < numBins) {
                bins[failing] = 5.5;
                EXPECT_TRUE(kernels.anyAbove(bins.data(), line.data(), 3, numBins)) << failing;
                EXPECT_FALSE(kernels.anyAbove(bins.data(), line.data(), 3, failing)) << failing;
                bins[failing] = 4.5;
                EXPECT_TRUE(kernels.anyBelow(bins.data(), line.data(), 3, numBins)) << failing;
            }
        }
    }
}

}  // namespace
