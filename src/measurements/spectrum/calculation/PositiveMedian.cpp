#include "PositiveMedian.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <utility>

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

// Vector types of the compiler: a comparison yields 0 or -1 a lane, which subtracts into a count. A plain sum of
// comparisons is turned into narrow conversions or branches and takes several times as long.
constexpr std::size_t numLanes = 2;
using DoubleLanes = double __attribute__((vector_size(numLanes * sizeof(double))));
using CountLanes = std::int64_t __attribute__((vector_size(numLanes * sizeof(std::int64_t))));

/// Number of values at most the bound.
std::size_t countAtMost(const double* x, std::size_t n, double bound) {
    const DoubleLanes bounds = {bound, bound};
    CountLanes even{};
    CountLanes odd{};
    std::size_t i = 0;
    for (; i + 2 * numLanes <= n; i += 2 * numLanes) {
        even -= DoubleLanes{x[i], x[i + 1]} <= bounds;
        odd -= DoubleLanes{x[i + 2], x[i + 3]} <= bounds;
    }
    std::size_t count = static_cast<std::size_t>(even[0] + even[1] + odd[0] + odd[1]);
    for (; i < n; ++i) {
        count += static_cast<std::size_t>(x[i] <= bound);
    }
    return count;
}

/// Appends the values above lower and not above upper. Blocks without one are passed over, as most are.
void collect(const double* x, std::size_t n, double lower, double upper, std::vector<double>& inside) {
    const auto append = [&](std::size_t first, std::size_t stop) {
        for (std::size_t i = first; i < stop; ++i) {
            if (x[i] > lower && x[i] <= upper) {
                inside.push_back(x[i]);
            }
        }
    };
    const DoubleLanes lowers = {lower, lower};
    const DoubleLanes uppers = {upper, upper};
    std::size_t i = 0;
    for (; i + 4 * numLanes <= n; i += 4 * numLanes) {
        CountLanes any{};
        for (std::size_t k = i; k < i + 4 * numLanes; k += numLanes) {
            const DoubleLanes values = {x[k], x[k + 1]};
            any |= (values > lowers) & (values <= uppers);
        }
        if ((any[0] | any[1]) != 0) {
            append(i, i + 4 * numLanes);
        }
    }
    append(i, n);
}

/// The smallest value above a bound, infinity if there is none.
double smallestAbove(const double* x, std::size_t n, double bound) {
    const DoubleLanes bounds = {bound, bound};
    DoubleLanes smallest = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    std::size_t i = 0;
    for (; i + numLanes <= n; i += numLanes) {
        const DoubleLanes values = {x[i], x[i + 1]};
        const CountLanes isSmaller = (values > bounds) & (values < smallest);
        smallest = isSmaller ? values : smallest;
    }
    double result = std::min(smallest[0], smallest[1]);
    for (; i < n; ++i) {
        result = x[i] > bound && x[i] < result ? x[i] : result;
    }
    return result;
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
            middle.second = smallestAbove(x, n, most);
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
        const std::size_t numAtMost = countAtMost(x, n, valueOf(key));
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
    const std::size_t numNotPositive = countAtMost(x, n, 0.0);
    const std::size_t numPositive = countAtMost(x, n, std::numeric_limits<double>::infinity()) - numNotPositive;
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
