#include "FirstLargest.h"

#include <algorithm>

namespace dspwavedecks {

namespace {

constexpr std::size_t numLanes = 8;
constexpr std::size_t blockLength = 256;

}  // namespace

std::size_t firstLargest(const double* x, std::size_t n) {
    if (n == 0) {
        return 0;
    }
    double largest = x[0];
    std::size_t blockOfLargest = 0;
    for (std::size_t start = 0; start < n; start += blockLength) {
        // Lanes of their own: one chain of comparisons would wait for each result.
        double lanes[numLanes];
        std::fill(lanes, lanes + numLanes, largest);
        const std::size_t stop = std::min(n, start + blockLength);
        std::size_t i = start;
        for (; i + numLanes <= stop; i += numLanes) {
            for (std::size_t lane = 0; lane < numLanes; ++lane) {
                lanes[lane] = x[i + lane] > lanes[lane] ? x[i + lane] : lanes[lane];
            }
        }
        for (; i < stop; ++i) {
            lanes[0] = x[i] > lanes[0] ? x[i] : lanes[0];
        }
        const double largestOfBlock = *std::max_element(lanes, lanes + numLanes);
        if (largestOfBlock > largest) {
            largest = largestOfBlock;
            blockOfLargest = start;
        }
    }
    const double* found = std::find(x + blockOfLargest, x + n, largest);
    return found == x + n ? 0 : static_cast<std::size_t>(found - x);
}

}  // namespace dspwavedecks
