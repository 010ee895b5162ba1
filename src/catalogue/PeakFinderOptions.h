#pragma once

#include "BaseOptions.h"
#include "Option.h"

/// The peak finders of frames, responses, spectra and spans of time.
namespace dspwavedecks::catalogue::peakFinder {

inline constexpr Option numPeaks = integer("numPeaks", "3", "", "most peaks that are reported, the strongest first");
inline constexpr Option minHeight = numberText("minHeight", "-Inf", "data", "a peak must lie above this level");
inline constexpr Option minDistance =
    numberText("minDistance", "1", "samples", "least distance of two peaks; 1: no thinning");
inline constexpr Option threshold =
    numberText("threshold", "0", "data", "least height of a peak over both its neighbours");
inline constexpr Option peakFinderEnabled = logical("peakFinderEnabled", "false", "switch the peak finder on");

inline constexpr auto options = join(base::hostFacts, base::measuredChannel,
                                     list(numPeaks, minHeight, minDistance, threshold, peakFinderEnabled), base::spans);

}  // namespace dspwavedecks::catalogue::peakFinder
