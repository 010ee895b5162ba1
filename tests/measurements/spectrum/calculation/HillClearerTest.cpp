#include "HillClearer.h"

#include "Test.h"

namespace {

/// One bin after the other, without a memory of what was wiped before.
std::size_t clearBinByBin(Values& psd, std::size_t index) {
    std::size_t first = index;
    while (first >= 1 && psd[first - 1] <= psd[first]) {
        --first;
    }
    std::size_t last = index;
    while (last + 1 < psd.size() && psd[last] >= psd[last + 1]) {
        ++last;
    }
    for (std::size_t k = first; k <= last; ++k) {
        psd[k] = 0.0;
    }
    return last - first + 1;
}

// Few levels: plateaus, zeros that nobody wiped, peaks inside wiped runs, NaN and negative bins.
TEST(HillClearer, AgreesWithTheWalkBinByBin) {
    std::mt19937 random(3);
    const auto draw = [&random](unsigned below) { return static_cast<unsigned>(random() % below); };
    for (int round = 0; round < 2000; ++round) {
        Values psd(1 + draw(60));
        const unsigned levels = 2 + draw(8);
        for (double& bin : psd) {
            bin = draw(40) == 0 ? nan : draw(60) == 0 ? -1.0 : draw(levels);
        }
        Values expected = psd;
        HillClearer hills;
        for (int wipe = 0; wipe < 8; ++wipe) {
            const std::size_t index = draw(static_cast<unsigned>(psd.size()));
            ASSERT_EQ(hills.clear(psd, index), clearBinByBin(expected, index)) << "round " << round;
            for (std::size_t k = 0; k < psd.size(); ++k) {
                ASSERT_EQ(psd[k] == 0.0, expected[k] == 0.0) << "round " << round;
            }
        }
    }
}

}  // namespace
