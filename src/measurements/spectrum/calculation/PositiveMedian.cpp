#include "PositiveMedian.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <utility>

#include "SpectrumKernels.h"

namespace dspwavedecks {

namespace {

constexpr std::size_t fewEnough = 48;   // so many values are selected from directly
constexpr std::size_t numSamples = 32;  // values that the first trials are taken from
constexpr std::size_t leastMargin = 12;

/// Bit pattern of a double that is not negative: it sorts as the double does.
using Key = std::int64_t;

Key keyOf(double value) {
    return std::bit_cast<Key>(value);
}
double valueOf(Key key) {
    return std::bit_cast<double>(key);
}

/// Appends the values above lower and not above upper. The count of a block tells whether it has any; most have none.
void collect(const double* x, std::size_t n, double lower, double upper, std::vector<double>& inside) {
    constexpr std::size_t blockLength = 32;
    const SpectrumKernels& kernels = spectrumKernels();
    for (std::size_t start = 0; start < n; start += blockLength) {
        const std::size_t length = std::min(blockLength, n - start);
        const double* const block = x + start;
        if (kernels.countAtMost(block, length, upper) > kernels.countAtMost(block, length, lower)) {
            std::copy_if(block, block + length, std::back_inserter(inside),
                         [=](double value) { return value > lower && value <= upper; });
        }
    }
}

/// Closes in on the value of a rank: rankLower values are at most `lower`, not more than the rank; rankUpper values are
/// at most `upper`, more than the rank.
class RankBracket {
public:
    RankBracket(const double* x, std::size_t n, std::size_t rank, std::size_t numNotPositive, std::size_t numOrdered)
        : x(x), n(n), rank(rank), rankLower(numNotPositive), rankUpper(numOrdered) {}

    bool isClosed() const { return upper - lower <= 1 || rankUpper - rankLower <= fewEnough; }

    void trySamples() {
        double samples[numSamples];
        std::size_t count = 0;
        for (std::size_t i = 0; i < numSamples; ++i) {
            const double value = x[(2 * i + 1) * n / (2 * numSamples)];
            samples[count] = value;
            count += static_cast<std::size_t>(value > 0.0);
        }
        std::sort(samples, samples + count);
        if (count >= 8) {
            tryKey(keyOf(samples[count / 2 - count / 8]));
            tryKey(keyOf(samples[count / 2 + count / 8]));
        }
    }

    /// Two trials a little to either side of where the rank should lie, or one in the middle of the bracket when those
    /// did not halve it.
    void narrow() {
        const std::size_t before = rankUpper - rankLower;
        const double margin = static_cast<double>(std::max(leastMargin, before / 16));
        tryKey(keyNear(-margin));
        tryKey(keyNear(margin));
        if (rankUpper - rankLower > before / 2) {
            tryKey(lower + (upper - lower) / 2);
        }
    }

    /// The value of the rank, and that of the next one.
    std::pair<double, double> select(std::vector<double>& scratch) const {
        const double most = valueOf(upper);
        std::pair<double, double> middle{most, most};
        if (upper - lower > 1) {
            scratch.clear();
            collect(x, n, valueOf(lower), most, scratch);
            const auto place = scratch.begin() + static_cast<std::ptrdiff_t>(rank - rankLower);
            std::nth_element(scratch.begin(), place, scratch.end());
            middle.first = *place;
            if (rank + 1 < rankUpper) {
                middle.second = *std::min_element(place + 1, scratch.end());
            }
        }
        if (rank + 1 == rankUpper) {
            middle.second = spectrumKernels().smallestAbove(x, n, most);
        }
        return middle;
    }

private:
    Key keyNear(double rankOffset) const {
        const double part =
            (static_cast<double>(rank - rankLower) + 0.5 + rankOffset) / static_cast<double>(rankUpper - rankLower);
        return lower + static_cast<Key>(static_cast<double>(upper - lower) * std::clamp(part, 0.0, 0.99));
    }

    void tryKey(Key key) {
        if (key <= lower || key >= upper) {
            return;
        }
        const std::size_t numAtMost = spectrumKernels().countAtMost(x, n, valueOf(key));
        (numAtMost <= rank ? lower : upper) = key;
        (numAtMost <= rank ? rankLower : rankUpper) = numAtMost;
    }

    const double* x;
    std::size_t n;
    std::size_t rank;
    Key lower = keyOf(0.0);
    Key upper = keyOf(std::numeric_limits<double>::infinity());
    std::size_t rankLower;
    std::size_t rankUpper;
};

}  // namespace

double medianOfPositive(const double* x, std::size_t n, std::vector<double>& scratch) {
    const std::size_t numNotPositive = spectrumKernels().countAtMost(x, n, 0.0);
    const std::size_t numPositive =
        spectrumKernels().countAtMost(x, n, std::numeric_limits<double>::infinity()) - numNotPositive;
    if (numPositive == 0) {
        return 0.0;
    }
    const std::size_t rank = numNotPositive + (numPositive - 1) / 2;
    RankBracket bracket(x, n, rank, numNotPositive, numNotPositive + numPositive);
    bracket.trySamples();
    while (!bracket.isClosed()) {
        bracket.narrow();
    }
    const auto [lowerMiddle, upperMiddle] = bracket.select(scratch);
    return numPositive % 2 != 0 ? lowerMiddle : (lowerMiddle + upperMiddle) / 2.0;
}

}  // namespace dspwavedecks
