#pragma once

#include <string>
#include <vector>

namespace dspwavedecks {

/// Standing of a spectral mask test: on the board under "spectralMask".
struct spectralMaskStruct {
    double successRate = 0.0;                    ///< percent of the tests that passed
    double numPassedTests = 0.0;                 ///< count
    double numTotalTests = 0.0;                  ///< count
    double spectrumPeak = 0.0;                   ///< reference level used last, in the spectrum's unit
    std::string currentStatus = "passing";       ///< "passing" or "failing"
    std::string failingMasks;                    ///< "Upper and lower" when the last frame failed, else empty
    bool upperMaskStatus = true;                 ///< the upper mask held in the last complete frame
    bool lowerMaskStatus = true;                 ///< the lower mask held in the last complete frame
    bool isCurrentlyPassing = false;             ///< the last complete frame passed
    bool isNewDataReady = false;                 ///< tested, and not yet taken by a query
    std::vector<unsigned long> failingChannels;  ///< from 0, counted over all signals
};

}  // namespace dspwavedecks
