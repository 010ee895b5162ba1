#pragma once

#include "numbench/nbArray.h"

/// What the query functions of the measurements on spectra answer. prhs[0] names the client. The functions that hand
/// out results clear the record's mark of new data; those that ask for the mark leave it.
namespace dspwavedecks {

/// plhs[0]: "Frequency" and "Value", n by 1, the peaks from the strongest on.
void answerPeaks(nbArray** plhs, const nbArray** prhs);
void answerNewPeaks(nbArray** plhs, const nbArray** prhs);

/// plhs[0]: "ChannelPower" with "ACPRLower" and "ACPRUpper", n by 1 and left unset if there are none, or with
/// "OccupiedBW" and "FrequencyError". plhs[1]: true for the ratios.
void answerChannelMeasurements(nbArray** plhs, const nbArray** prhs);
void answerNewChannelMeasurements(nbArray** plhs, const nbArray** prhs);

/// plhs[0]: "HarmonicNumber", "Frequency" and "Power", n by 1, "THD", "THDPercent", "SNR", "SINAD" and "SFDR"; or
/// "Frequency", "Power" and "TOI". plhs[1]: true for harmonics.
void answerDistortionMeasurements(nbArray** plhs, const nbArray** prhs);
void answerNewDistortionMeasurements(nbArray** plhs, const nbArray** prhs);

/// plhs[0]: "SpotPhaseNoise", "FrequencyOffset" and "PhaseNoise", a column for each channel of all signals, filled up
/// with NaN.
void answerPhaseNoise(nbArray** plhs, const nbArray** prhs);
void answerNewPhaseNoise(nbArray** plhs, const nbArray** prhs);

/// plhs[0]: "IsCurrentlyPassing", "NumPassedTests", "NumTotalTests", "SuccessRate", "FailingMasks", "FailingChannels",
/// 1 by n and counted from 1, and "SimulationTime", s.
void answerSpectralMask(nbArray** plhs, const nbArray** prhs);
void answerNewSpectralMask(nbArray** plhs, const nbArray** prhs);

}  // namespace dspwavedecks
