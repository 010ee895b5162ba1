#include "ExtremeScan.h"

#include <algorithm>
#include <array>

namespace dspwavedecks {

namespace {

// Independent lanes hide the latency of the comparisons: 16 doubles fill eight SSE2 registers for the two extremes.
constexpr std::size_t laneCount = 8;

struct ExtremeValues {
    double minimum;
    double maximum;
    bool hasNaN;
};

ExtremeValues extremeValues(const double* data, std::size_t count) {
    std::array<double, laneCount> minimum;
    std::array<double, laneCount> maximum;
    std::array<double, laneCount> unordered{};  // turns NaN, and stays so, once its lane has met a NaN
    minimum.fill(data[0]);
    maximum.fill(data[0]);
    std::size_t i = 0;
    for (; i + laneCount <= count; i += laneCount) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            const double x = data[i + lane];
            minimum[lane] = x < minimum[lane] ? x : minimum[lane];
            maximum[lane] = x > maximum[lane] ? x : maximum[lane];
            unordered[lane] += x != x ? 1.0 : 0.0;
        }
    }
    ExtremeValues result{minimum[0], maximum[0], false};
    for (; i < count; ++i) {
        const double x = data[i];
        result.minimum = x < result.minimum ? x : result.minimum;
        result.maximum = x > result.maximum ? x : result.maximum;
        result.hasNaN = result.hasNaN || x != x;
    }
    for (std::size_t lane = 0; lane < laneCount; ++lane) {
        result.minimum = std::min(result.minimum, minimum[lane]);
        result.maximum = std::max(result.maximum, maximum[lane]);
        result.hasNaN = result.hasNaN || unordered[lane] != 0.0;
    }
    return result;
}

std::size_t firstEqual(const double* data, std::size_t count, double value) {
    return static_cast<std::size_t>(std::find(data, data + count, value) - data);
}

std::size_t lastEqual(const double* data, std::size_t count, double value) {
    std::size_t i = count - 1;
    while (data[i] != value) {
        --i;
    }
    return i;
}

ExtremePositions plainScan(const double* data, std::size_t count, MeasurementMinMaxSortOrder order) {
    if (order == MinMaxLastMaximum) {
        const auto [minimum, maximum] = std::minmax_element(data, data + count);
        return {static_cast<std::size_t>(minimum - data), static_cast<std::size_t>(maximum - data)};
    }
    return {static_cast<std::size_t>(std::min_element(data, data + count) - data),
            static_cast<std::size_t>(std::max_element(data, data + count) - data)};
}

}  // namespace

ExtremePositions findExtremes(const double* data, std::size_t count, MeasurementMinMaxSortOrder order) {
    const ExtremeValues values = extremeValues(data, count);
    if (values.hasNaN) {
        return plainScan(data, count, order);
    }
    return {firstEqual(data, count, values.minimum), order == MinMaxLastMaximum
                                                         ? lastEqual(data, count, values.maximum)
                                                         : firstEqual(data, count, values.maximum)};
}

}  // namespace dspwavedecks
