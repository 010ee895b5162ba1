#include "FirstLargest.h"

#include <algorithm>

#include "SpectrumKernels.h"

namespace dspwavedecks {

namespace {

constexpr std::size_t blockLength = 256;

}  // namespace

std::size_t firstLargest(const double* x, std::size_t n) {
    if (n == 0) {
        return 0;
    }
    double largest = x[0];
    std::size_t blockOfLargest = 0;
    for (std::size_t start = 0; start < n; start += blockLength) {
        const double largestOfBlock =
            spectrumKernels().largestAbove(x + start, std::min(blockLength, n - start), largest);
        if (largestOfBlock > largest) {
            largest = largestOfBlock;
            blockOfLargest = start;
        }
    }
    const double* found = std::find(x + blockOfLargest, x + n, largest);
    return found == x + n ? 0 : static_cast<std::size_t>(found - x);
}

}  // namespace dspwavedecks
