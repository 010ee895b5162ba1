#pragma once

#include <vector>

namespace dspwavedecks {

/// Peaks of one search: on the board under "peakFinder", and what PeakFinder::findPeaks returns.
struct peakFinderStruct {
    struct Peak {
        double value = 0.0;     ///< the sample, in the unit of the searched data
        double location = 0.0;  ///< index from the start of the searched stretch; Hz or s once a filter has turned it
    };

    std::vector<Peak> peaks;      ///< strongest first
    unsigned long numPeaks = 0;   ///< entries of peaks
    bool isNewDataReady = false;  ///< a search has finished and no query has taken its result yet
};

}  // namespace dspwavedecks
