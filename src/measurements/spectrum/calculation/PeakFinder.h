#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "peakFinderStruct.h"

namespace dspwavedecks {

/// How peaks are ranked. Any other value: not by value at all, the rightmost peak comes first.
enum PeakSelectionPreference : std::uint32_t {
    PeakSelectionLastMaximum = 0,   ///< by value; of equal peaks the one furthest right comes first
    PeakSelectionFirstMaximum = 1,  ///< by value; of equal peaks the one furthest left comes first
};

/// Local maxima of one stretch of samples: those that stand out, strongest first, no two too close.
///
/// A sample is a local maximum if the samples rise into it and fall after it. A run of equal samples takes the trend of
/// what follows it, so that a plateau counts at its first sample, and one that reaches the end of the stretch not at
/// all. The first and the last sample of the stretch are never peaks. NaN is no peak and counts as equal to its
/// neighbours.
class PeakFinder {
public:
    PeakFinder() = default;
    PeakFinder(const double& minHeight, const unsigned long& numPeaks, const double& minDistance,
               const double& threshold);

    /// A peak must be strictly above this; unit of the data, -inf by default.
    void setMinHeight(const double& value) { minHeight = value; }
    /// The most peaks to return, 3 by default.
    void setNumPeaks(const unsigned long& value) { numPeaks = value; }
    /// Peaks at this distance in samples or nearer to a stronger one are dropped; 1 by default, which drops none.
    void setMinDistance(const double& value) { minDistance = value; }
    /// A peak must stand above both its neighbours by at least this; unit of the data, 0 by default.
    void setThreshold(const double& value) { threshold = value; }

    double getMinHeight() const { return minHeight; }
    unsigned long getNumPeaks() const { return numPeaks; }
    double getMinDistance() const { return minDistance; }
    double getThreshold() const { return threshold; }
    /// Peaks that the last search returned.
    unsigned long getActualNumPeaks() const { return actualNumPeaks; }

    /// Peaks of data[range[0] .. range[1]), locations counted from range[0].
    /// An empty or crossed range gives an empty result whose flag is false; every other search sets the flag.
    /// Cost: linear in the samples, and n log n at most in the candidates that have to be ranked.
    /// The result stands until the next search.
    const peakFinderStruct& findPeaks(const double* data, const std::vector<unsigned long>& range,
                                      PeakSelectionPreference preference);

private:
    /// A local maximum on its way through ranking and thinning.
    struct Candidate {
        double value;
        std::size_t order;  ///< index into locations
    };

    bool findAmongStrongest(const double* x, std::size_t numSamples, PeakSelectionPreference preference);
    void collectStrong(const double* x, std::size_t numSamples, double bound, std::size_t first, std::size_t stop);
    void collectCandidates(const double* x, std::size_t numSamples);
    void selectPeaks(PeakSelectionPreference preference, bool mayStopEarly);
    double boundOfStrongest(std::size_t numUnranked, std::size_t wanted);
    std::size_t rankNext(PeakSelectionPreference preference, std::size_t numUnranked);
    void suppressAround(std::size_t order);

    // options
    double minHeight = -std::numeric_limits<double>::infinity();
    unsigned long numPeaks = 3;
    double minDistance = 1.0;
    double threshold = 0.0;

    // state
    unsigned long actualNumPeaks = 0;
    peakFinderStruct result;

    // scratch
    std::vector<std::size_t> maxima;    // local maxima before height and threshold
    std::vector<double> locations;      // of the candidates, ascending
    std::vector<Candidate> candidates;  // ranked from the back, as far as was needed
    std::vector<char> suppressed;       // by order
    std::vector<double> blockMaxima;    // strongest sample of each block
    std::vector<double> groupMaxima;    // the strongest candidate of each of a number of groups
};

}  // namespace dspwavedecks
