#pragma once

#include "BaseOptions.h"
#include "Option.h"
#include "PeakFinderOptions.h"
#include "SpectrumWords.h"

/// What the measurements on spectra have in common.
namespace dspwavedecks::catalogue::spectrumMeasurement {

inline constexpr Option spectrumType =
    word("spectrumType", "power", spectrum::spectrumTypeWords, "what a bin of the measured spectrum tells");
inline constexpr Option spectrumUnits =
    word("spectrumUnits", "dbm", spectrum::measurementUnitsWords, "units of the measured spectrum");
inline constexpr Option measurementChannelRBW =
    number("measurementChannelRBW", "9.7656", "Hz", "RBW of the measured spectrum; the estimator's own overrules it");
inline constexpr Option measurementChannelFrequencyOffset =
    number("measurementChannelFrequencyOffset", "0", "Hz", "added to the frequencies of the measured channel");
inline constexpr Option twoSidedSpectrum = logical("twoSidedSpectrum", "true", "the spectrum shown is two-sided");
inline constexpr Option normalTraceData = logical("normalTraceData", "true", "measure the spectrum itself");
inline constexpr Option maxHoldTraceData =
    logical("maxHoldTraceData", "false", "else measure the maximum hold trace, not the minimum hold trace");
inline constexpr Option minHoldTraceData =
    logical("minHoldTraceData", "false", "stored; the other two choose the trace");

inline constexpr auto traces = list(normalTraceData, maxHoldTraceData, minHoldTraceData);
/// What the setup of most of them needs of the host.
inline constexpr auto hostFacts =
    join(list(base::action, base::clientID, base::numChannels, base::frameSizeAtSizeChange), base::measuredChannel);

}  // namespace dspwavedecks::catalogue::spectrumMeasurement

/// The frequency_peak_finder_filter: the peak finder's options and these.
namespace dspwavedecks::catalogue::frequencyPeakFinder {

inline constexpr Option frequencyLimits =
    numbers("frequencyLimits", "0,0", "Hz", "lower and upper end of the frequencies that are searched");

inline constexpr auto options =
    join(peakFinder::options, list(spectrumMeasurement::measurementChannelFrequencyOffset, frequencyLimits),
         spectrumMeasurement::traces);

}  // namespace dspwavedecks::catalogue::frequencyPeakFinder

/// The channel_measurements_filter.
namespace dspwavedecks::catalogue::channelMeasurements {

inline constexpr Word typeWords[] = {
    {"occupied-bandwidth", 0, "occupied bandwidth, channel power and frequency error"},
    {"acpr", 1, "adjacent channel power ratio"},
};
inline constexpr Word filterShapeWords[] = {
    {"none", 0},
    {"gaussian", 1},
    {"rrc", 2, "root raised cosine"},
};

inline constexpr Option channelMeasurementsType =
    word("channelMeasurementsType", "occupied-bandwidth", typeWords, "what is measured");
inline constexpr Option channelMeasurementsEnabled =
    logical("channelMeasurementsEnabled", "false", "switch the channel measurements on");
inline constexpr Option measurementChannelStartFrequency =
    number("measurementChannelStartFrequency", "-1000", "Hz", "lower edge of the main channel");
inline constexpr Option measurementChannelStopFrequency =
    number("measurementChannelStopFrequency", "1000", "Hz", "upper edge of the main channel");
inline constexpr Option percentOccupiedBW =
    number("percentOccupiedBW", "99", "%", "power inside the occupied band, of the channel's power");
inline constexpr Option numOffsets = integer("numOffsets", "2", "", "adjacent channels on each side");
inline constexpr Option adjacentBW = number("adjacentBW", "1000", "Hz", "width of the adjacent channels");
inline constexpr Option filterShape = word("filterShape", "none", filterShapeWords, "channel filter of acpr");
inline constexpr Option filterCoeff =
    number("filterCoeff", "0.5", "", "half-power half-width over channel width (gaussian), or roll-off (rrc)");
inline constexpr Option acprOffsets =
    numbers("acprOffsets", "2000,3500", "Hz", "distances of the adjacent channels from the main channel's center");

inline constexpr auto options =
    join(spectrumMeasurement::hostFacts,
         list(channelMeasurementsType, channelMeasurementsEnabled, spectrumMeasurement::spectrumType,
              spectrumMeasurement::spectrumUnits, spectrumMeasurement::measurementChannelRBW,
              measurementChannelStartFrequency, measurementChannelStopFrequency,
              spectrumMeasurement::measurementChannelFrequencyOffset, percentOccupiedBW, numOffsets, adjacentBW,
              filterShape, filterCoeff, acprOffsets),
         spectrumMeasurement::traces);

}  // namespace dspwavedecks::catalogue::channelMeasurements

/// The distortion_measurements_filter.
namespace dspwavedecks::catalogue::distortionMeasurements {

inline constexpr Word typeWords[] = {
    {"harmonic", 0, "THD, SNR, SINAD and SFDR of one tone"},
    {"intermodulation", 1, "third-order intercept of two tones"},
};

inline constexpr Option distortionType = word("distortionType", "harmonic", typeWords, "what is measured");
inline constexpr Option numHarmonics = integer("numHarmonics", "6", "", "harmonics, the fundamental included");
inline constexpr Option distortionMeasurementsEnabled =
    logical("distortionMeasurementsEnabled", "false", "switch the distortion measurements on");

inline constexpr auto options =
    join(spectrumMeasurement::hostFacts,
         list(spectrumMeasurement::spectrumType, spectrumMeasurement::spectrumUnits,
              spectrumMeasurement::measurementChannelRBW, spectrumMeasurement::measurementChannelFrequencyOffset,
              distortionType, numHarmonics, spectrumMeasurement::twoSidedSpectrum, distortionMeasurementsEnabled),
         spectrumMeasurement::traces);

}  // namespace dspwavedecks::catalogue::distortionMeasurements

/// The phase_noise_filter.
namespace dspwavedecks::catalogue::phaseNoise {

inline constexpr Option phaseNoiseEnabled =
    logical("phaseNoiseEnabled", "false", "switch the phase noise measurement on");
inline constexpr Option phaseNoiseFrequencyOffset =
    numbers("phaseNoiseFrequencyOffset", "", "Hz", "spot offsets from the carrier, rising");

inline constexpr auto options =
    join(spectrumMeasurement::hostFacts,
         list(base::numSignals, phaseNoiseEnabled, phaseNoiseFrequencyOffset, spectrumMeasurement::spectrumType,
              spectrumMeasurement::spectrumUnits, spectrumMeasurement::measurementChannelRBW,
              spectrumMeasurement::measurementChannelFrequencyOffset, spectrumMeasurement::twoSidedSpectrum),
         spectrumMeasurement::traces);

}  // namespace dspwavedecks::catalogue::phaseNoise

/// The spectral_mask_tester_filter.
namespace dspwavedecks::catalogue::spectralMask {

inline constexpr Word enabledMasksWords[] = {{"none", 0}, {"upper", 1}, {"lower", 2}, {"upper-and-lower", 3}};
inline constexpr Word referenceLevelWords[] = {
    {"custom", 0, "the level in customReferenceLevel"},
    {"spectrum-peak", 1, "the peak of the chosen channel"},
};

inline constexpr Option enabledMasks = word("enabledMasks", "none", enabledMasksWords, "masks that are tested");
inline constexpr Option upperMask =
    numbersText("upperMask", "Inf", "Hz, data", "one level, or the breakpoints' frequencies and then their levels");
inline constexpr Option lowerMask =
    numbersText("lowerMask", "-Inf", "Hz, data", "one level, or the breakpoints' frequencies and then their levels");
inline constexpr Option referenceLevel =
    word("referenceLevel", "custom", referenceLevelWords, "level to which the masks are relative");
inline constexpr Option customReferenceLevel = number("customReferenceLevel", "0", "data", "fixed reference level");
inline constexpr Option spectralMaskChannel =
    integer("spectralMaskChannel", "0", "", "channel of the peak reference, counted from 0");
inline constexpr Option spectralMaskSignal =
    integer("spectralMaskSignal", "0", "", "measured signal; the peak reference stays in signal 0");
inline constexpr Option maskFrequencyOffset =
    number("maskFrequencyOffset", "0", "Hz", "added to the masks' frequencies");
inline constexpr Option frequencyLimits =
    numbers("frequencyLimits", "-5000,5000", "Hz", "where a mask of one level applies");
inline constexpr Option frequencyOffset =
    numbers("frequencyOffset", "", "Hz", "added to the frequencies, one a channel");
inline constexpr Option spectralMaskEnabled = logical("spectralMaskEnabled", "false", "switch the mask test on");

inline constexpr auto options = join(spectrumMeasurement::hostFacts,
                                     list(base::numSignals, enabledMasks, upperMask, lowerMask, referenceLevel,
                                          customReferenceLevel, spectralMaskChannel, spectralMaskSignal,
                                          maskFrequencyOffset, frequencyLimits, frequencyOffset, spectralMaskEnabled));

}  // namespace dspwavedecks::catalogue::spectralMask
