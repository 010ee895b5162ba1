// State levels of a pulse waveform by the histogram method: the modes of the lower and of the upper half of the values.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "BilevelMeasurements.h"
#include "ExtremeScan.h"
#include "SpanKernels.h"

namespace dspwavedecks {

namespace {

constexpr std::size_t binCount = histogramBinCount;
using Histogram = std::array<std::uint64_t, binCount>;

Histogram countBins(const BilevelSpan& span, double minimum, double divisor, bool hasNaN) {
    // Eight counters a bin: neighbouring samples of a pulse fall into one bin, and an increment waits for the one
    // before.
    constexpr std::size_t lanes = 8;
    constexpr std::size_t blockSize = 256;
    const SpanKernels& kernels = spanKernels();
    // Where 100 times a difference overflows, the exact bin is 0.
    constexpr double scale = binCount;
    const bool isEven =
        !hasNaN && std::isnormal(scale / divisor) && std::isnormal(divisor) && std::isfinite(divisor * scale);
    const auto findBins = isEven ? kernels.findHistogramBinsInRange : kernels.findHistogramBins;
    std::array<Histogram, lanes> counts{};
    std::array<std::uint64_t, blockSize> bins;
    const std::size_t count = static_cast<std::size_t>(span.count);
    for (std::size_t begin = 0; begin < count; begin += blockSize) {
        const std::size_t length = std::min(blockSize, count - begin);
        findBins(span.x + begin, length, minimum, divisor, bins.data());
        std::size_t i = 0;
        for (; i + lanes <= length; i += lanes) {
            for (std::size_t lane = 0; lane < lanes; ++lane) {
                ++counts[lane][bins[i + lane]];
            }
        }
        for (; i < length; ++i) {
            ++counts[0][bins[i]];
        }
    }
    Histogram histogram{};
    for (std::size_t bin = 0; bin < binCount; ++bin) {
        for (const Histogram& lane : counts) {
            histogram[bin] += lane[bin];
        }
    }
    return histogram;
}

/// Bin with the greatest count from first to last inclusive, the lowest of equal ones.
std::size_t modeOf(const Histogram& histogram, std::size_t first, std::size_t last) {
    std::size_t best = first;
    for (std::size_t bin = first + 1; bin <= last; ++bin) {
        if (histogram[bin] > histogram[best]) {
            best = bin;
        }
    }
    return best;
}

}  // namespace

void BilevelMeasurements::computeStateLevels(const BilevelSpan& span) {
    const auto [minimum, maximum, hasNaN] = findExtremeValues(span.x, static_cast<std::size_t>(span.count));
    const double spread = maximum - minimum;
    if (!std::isfinite(spread)) {
        return;  // the levels found last stay in force
    }
    const double divisor = spread == 0.0 ? std::numeric_limits<double>::epsilon() : spread;
    const Histogram histogram = countBins(span, minimum, divisor, hasNaN);

    const auto isFilled = [](std::uint64_t count) { return count > 0; };
    const auto firstFilled = std::find_if(histogram.begin(), histogram.end(), isFilled);
    const auto lastFilled = std::find_if(histogram.rbegin(), histogram.rend(), isFilled);
    const auto first = static_cast<std::size_t>(firstFilled - histogram.begin());
    const auto last = static_cast<std::size_t>(histogram.rend() - lastFilled) - 1;
    const std::size_t middle = first + (last - first) / 2;  // belongs to both halves
    const std::size_t lowMode = modeOf(histogram, first, middle);
    const std::size_t highMode = modeOf(histogram, middle, last);

    const double width = spread / static_cast<double>(binCount);
    autoHighStateLevel = minimum + (static_cast<double>(highMode) + 0.5) * width;
    // The first bin is added on the low side alone; meant so. It is 0 for finite data: the minimum lies in bin 0.
    autoLowStateLevel = minimum + (static_cast<double>(lowMode + first) + 0.5) * width;
}

}  // namespace dspwavedecks
