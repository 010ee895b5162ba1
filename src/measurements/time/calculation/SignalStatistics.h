#pragma once

#include <cstddef>
#include <vector>

#include "MeasurementMinMaxSortOrder.h"
#include "signalStatsStruct.h"

namespace dspwavedecks {

/// Scalar statistics of one contiguous stretch of samples: extremes with their positions, mean, variance, standard
/// deviation, median, rms and mean square.
///
/// A NaN is neither skipped nor reported: every comparison with it is false, and sums carry it into the results.
class SignalStatistics {
public:
    void setComputeMin(const bool& compute) { computeMin = compute; }
    void setComputeMax(const bool& compute) { computeMax = compute; }
    void setComputePeakToPeak(const bool& compute) { computePeakToPeak = compute; }
    void setComputeMean(const bool& compute) { computeMean = compute; }
    void setComputeVariance(const bool& compute) { computeVariance = compute; }
    void setComputeStandardDeviation(const bool& compute) { computeStandardDeviation = compute; }
    void setComputeMedian(const bool& compute) { computeMedian = compute; }
    void setComputeRMS(const bool& compute) { computeRMS = compute; }
    void setComputeMeanSquare(const bool& compute) { computeMeanSquare = compute; }

    /// Statistics of data[range[0] .. range[1]).
    ///   mean = sum(x) / N, summed from the first sample to the last
    ///   variance = sum((x - mean)^2) / (N - 1), the divisor 1 for N = 1; standardDeviation = sqrt(variance)
    ///   median = (v[(N - 1) / 2] + v[N / 2]) / 2 of the sorted samples v
    ///   meanSquare = sum(x^2) / N; rms = sqrt(meanSquare)
    /// A figure that the settings switch off keeps what an earlier call left; an empty range changes nothing. The three
    /// validity flags of the result, set by its owner, switch off whole groups: with meanValid false the variance is
    /// taken about the mean of an earlier call.
    /// Returns the record held by this object. O(N); allocates only when a stretch is longer than all before.
    signalStatsStruct& computeSignalStatistics(const double* data, const std::vector<unsigned long>& range,
                                               MeasurementMinMaxSortOrder order);

    /// Whether a call finds the extremes and their positions.
    bool computesMin() const { return computeMin && stats.minMaxValid; }
    bool computesMax() const { return computeMax && stats.minMaxValid; }

    /// The record of the last call; its owner sets the validity flags here.
    signalStatsStruct& getStats() { return stats; }

private:
    void updateExtremes(const double* data, std::size_t count, MeasurementMinMaxSortOrder order);
    void updateMean(const double* data, std::size_t count);
    void updateVariance(const double* data, std::size_t count);
    void updateMedianAndMeanSquare(const double* data, std::size_t count);

    // Options. Variance and mean square are off while their roots are on: meant so.
    bool computeMin = true;
    bool computeMax = true;
    bool computePeakToPeak = true;
    bool computeMean = true;
    bool computeVariance = false;
    bool computeStandardDeviation = true;
    bool computeMedian = true;
    bool computeRMS = true;
    bool computeMeanSquare = false;

    // State.
    signalStatsStruct stats;

    // Scratch.
    std::vector<double> selection;
};

}  // namespace dspwavedecks
