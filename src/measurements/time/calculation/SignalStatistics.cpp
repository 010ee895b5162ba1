#include "SignalStatistics.h"

#include <array>
#include <cmath>
#include <numeric>

#include "ExtremeScan.h"
#include "MedianSelection.h"

namespace dspwavedecks {

namespace {

/// Sum of (x - centre)^2 in independent lanes: no order is asked for, and one chain of additions is five times slower.
double sumOfSquaresAbout(const double* data, std::size_t count, double centre) {
    constexpr std::size_t laneCount = 8;
    std::array<double, laneCount> lanes{};
    std::size_t i = 0;
    for (; i + laneCount <= count; i += laneCount) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            const double deviation = data[i + lane] - centre;
            lanes[lane] += deviation * deviation;
        }
    }
    double sum = 0.0;
    for (; i < count; ++i) {
        const double deviation = data[i] - centre;
        sum += deviation * deviation;
    }
    return std::accumulate(lanes.begin(), lanes.end(), sum);
}

}  // namespace

signalStatsStruct& SignalStatistics::computeSignalStatistics(const double* data,
                                                             const std::vector<unsigned long>& range,
                                                             MeasurementMinMaxSortOrder order) {
    if (range[1] <= range[0]) {
        return stats;
    }
    const std::size_t count = range[1] - range[0];
    const double* const first = data + range[0];
    if (stats.minMaxValid && (computeMin || computeMax || computePeakToPeak)) {
        updateExtremes(first, count, order);
    }
    if (stats.meanValid && (computeMean || computeVariance || computeStandardDeviation)) {
        updateMean(first, count);
    }
    if (stats.varianceValid && (computeVariance || computeStandardDeviation)) {
        updateVariance(first, count);
    }
    if (stats.meanValid && (computeMedian || computeRMS || computeMeanSquare)) {
        updateMedianAndMeanSquare(first, count);
    }
    return stats;
}

void SignalStatistics::updateExtremes(const double* data, std::size_t count, MeasurementMinMaxSortOrder order) {
    const ExtremePositions extremes = findExtremes(data, count, order);
    if (computeMax) {
        stats.xMax = static_cast<double>(extremes.maximum);
        stats.yMax = data[extremes.maximum];
    }
    if (computeMin) {
        stats.xMin = static_cast<double>(extremes.minimum);
        stats.yMin = data[extremes.minimum];
    }
    stats.peakToPeak = data[extremes.maximum] - data[extremes.minimum];
}

void SignalStatistics::updateMean(const double* data, std::size_t count) {
    stats.mean = std::accumulate(data, data + count, 0.0) / static_cast<double>(count);
}

void SignalStatistics::updateVariance(const double* data, std::size_t count) {
    const double divisor = count == 1 ? 1.0 : static_cast<double>(count - 1);
    stats.variance = sumOfSquaresAbout(data, count, stats.mean) / divisor;
    stats.standardDeviation = std::sqrt(stats.variance);
}

void SignalStatistics::updateMedianAndMeanSquare(const double* data, std::size_t count) {
    if (computeMedian) {
        stats.median = selectMedian(data, count, selection);
    }
    if (computeRMS || computeMeanSquare) {
        stats.meanSquare = sumOfSquaresAbout(data, count, 0.0) / static_cast<double>(count);
        stats.rms = std::sqrt(stats.meanSquare);
    }
}

}  // namespace dspwavedecks
