#include "ExtremeScan.h"

#include <algorithm>

#include "SpanKernels.h"

namespace dspwavedecks {

namespace {

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
    const ScannedExtremes values = spanKernels().scanExtremes(data, count);
    if (values.hasNaN) {
        return plainScan(data, count, order);
    }
    return {firstEqual(data, count, values.minimum), order == MinMaxLastMaximum
                                                         ? lastEqual(data, count, values.maximum)
                                                         : firstEqual(data, count, values.maximum)};
}

ExtremeValues findExtremeValues(const double* data, std::size_t count) {
    const ScannedExtremes values = spanKernels().scanExtremes(data, count);
    if (values.hasNaN) {
        const ExtremePositions positions = plainScan(data, count, MinMaxLastMaximum);
        return {data[positions.minimum], data[positions.maximum], true};
    }
    return {values.minimum, values.maximum, false};
}

}  // namespace dspwavedecks
