#pragma once

#include <limits>
#include <vector>

namespace dspwavedecks {

/// Phase noise curves of all signals: on the board under "phaseNoise". Tables are [signal][channel].
struct phaseNoiseStruct {
    /// One list of values a channel of a signal.
    using CurveTable = std::vector<std::vector<std::vector<double>>>;

    unsigned long totalNumChannels = 0;                 ///< channels of all signals
    unsigned long numSpotFrequencyOffsets = 0;          ///< spot offsets
    unsigned long maxNumPoints = 0;                     ///< points of the longest curve
    std::vector<std::vector<unsigned long>> numPoints;  ///< valid points at the head of each curve
    std::vector<double> spotFrequencyOffset;            ///< Hz
    CurveTable spotPhaseNoise;                          ///< dBc/Hz at the spot offsets; NaN where there is no curve
    CurveTable frequencyOffset;                         ///< Hz above the carrier
    CurveTable phaseNoise;                              ///< dBc/Hz
    /// Smallest and largest offset, Hz, and level, dBc/Hz, of all curves.
    std::vector<double> frequencyOffsetLimits{std::numeric_limits<double>::infinity(),
                                              -std::numeric_limits<double>::infinity()};
    std::vector<double> phaseNoiseLimits{std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity()};
    bool isNewDataReady = false;  ///< all signals have gone through, and no query has taken the result yet
};

}  // namespace dspwavedecks
