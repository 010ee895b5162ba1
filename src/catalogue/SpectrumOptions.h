#pragma once

#include "BaseOptions.h"
#include "Option.h"
#include "SpectrumWords.h"

/// The spectrum_estimator_filter, in the order in which it reads its options: what gates a value comes before it.
namespace dspwavedecks::catalogue::spectrum {

inline constexpr Option inputDomain = word("inputDomain", "time", inputDomainWords, "what the frames hold");
inline constexpr Option spectrumType = word("spectrumType", "power", spectrumTypeWords, "what a bin tells");
inline constexpr Option showSpectrum = logical("showSpectrum", "true", "show the averaged spectrum");
inline constexpr Option showSpectrogram = logical("showSpectrogram", "false", "show the spectra over time");
inline constexpr Option sampleRate = number("sampleRate", "10000", "Hz", "sample rate of the input");
inline constexpr Option frequencyOffset =
    numbers("frequencyOffset", "", "Hz", "added to the frequencies, one a channel");
inline constexpr Option method = word("method", "welch", methodWords, "how spectra are estimated");
inline constexpr Option frequencyRange =
    word("frequencyRange", "centered", frequencyRangeWords, "sides that are shown");
inline constexpr Option defaultSegmentLength =
    wholeNumber("defaultSegmentLength", "1024", "samples", "full span over this is the automatic RBW");
inline constexpr Option maxSegmentLength =
    wholeNumber("maxSegmentLength", "1000000", "samples", "longest segment, where the limit is enabled");
inline constexpr Option frequencyResolutionMethod =
    word("frequencyResolutionMethod", "rbw", frequencyResolutionMethodWords, "how the resolution is set");
inline constexpr Option autoRBW = logical("autoRBW", "true", "choose the RBW by the span; a set RBW is then ignored");
inline constexpr Option windowInvariantSamplesPerUpdate =
    logical("windowInvariantSamplesPerUpdate", "false", "with automatic RBW keep the segment length for every window");
inline constexpr Option rbw = number("rbw", "10", "Hz", "resolution bandwidth");
inline constexpr Option autoFFTLength = logical("autoFFTLength", "true", "choose the FFT length by the segment length");
inline constexpr Option fftLength = wholeNumber("fftLength", "1024", "points", "FFT length when it is not automatic");
inline constexpr Option autoFrequencyVector = logical("autoFrequencyVector", "true", "compute the frequencies");
inline constexpr Option frequencyVector =
    numbers("frequencyVector", "", "Hz", "frequencies of frequency input when they are not computed");
inline constexpr Option numTapsPerBand = wholeNumber("numTapsPerBand", "12", "", "filter bank: taps for each band");
inline constexpr Option windowLength =
    wholeNumber("windowLength", "1024", "samples", "length of the window when it sets the resolution");
inline constexpr Option frequencySpan = word("frequencySpan", "full", frequencySpanWords, "how the span is given");
inline constexpr Option span = number("span", "10000", "Hz", "width of the span");
inline constexpr Option centerFrequency = number("centerFrequency", "0", "Hz", "center of the span");
inline constexpr Option startFrequency = number("startFrequency", "-1000", "Hz", "lower end of the span");
inline constexpr Option stopFrequency = number("stopFrequency", "1000", "Hz", "upper end of the span");
inline constexpr Option overlapPercent = number("overlapPercent", "0", "%", "overlap of the segments (welch)");
inline constexpr Option window = word("window", "hann", windowWords, "window function (welch)");
inline constexpr Option customWindow = numbers("customWindow", "", "", "samples of the custom window");
inline constexpr Option sidelobeAttenuation =
    number("sidelobeAttenuation", "60", "dB", "sidelobes below the main lobe (chebyshev, kaiser)");
inline constexpr Option averagingMethod =
    word("averagingMethod", "exponential", averagingMethodWords, "how averaging is set");
inline constexpr Option forgettingFactor =
    number("forgettingFactor", "0.9", "", "weight of the past in the average, 0 (no averaging) to 1");
inline constexpr Option autoVBW = logical("autoVBW", "true", "video bandwidth that equals a forgetting factor of 0.9");
inline constexpr Option vbw = number("vbw", "10", "Hz", "video bandwidth");
inline constexpr Option spectralAverages = wholeNumber("spectralAverages", "1", "", "number of averages");
inline constexpr Option spectrumUnits = word("spectrumUnits", "dbm", spectrumUnitsWords, "units of the spectrum");
inline constexpr Option inputUnits = word("inputUnits", "dbm", spectrumUnitsWords, "units of frequency input");
inline constexpr Option referenceLoad = number("referenceLoad", "1", "ohm", "load for which power is told");
inline constexpr Option autoFullScale = logical(
    "autoFullScale", "true", "dBFS: full scale by inputRange; simulations measure that of floating-point signals");
inline constexpr Option fullScale = number("fullScale", "1", "data", "dBFS: full scale when it is not automatic");
inline constexpr Option plotMaxHoldTrace = logical("plotMaxHoldTrace", "false", "keep the maximum of each bin");
inline constexpr Option plotMinHoldTrace = logical("plotMinHoldTrace", "false", "keep the minimum of each bin");
inline constexpr Option spectrogramChannel =
    wholeNumber("spectrogramChannel", "0", "", "channel that the spectrogram shows, counted from 0");
inline constexpr Option autoTimeSpan = logical("autoTimeSpan", "true", "spectrogram of 100 lines");
inline constexpr Option timeSpan = number("timeSpan", "0.1", "s", "time that the spectrogram covers");
inline constexpr Option autoTimeResolution =
    logical("autoTimeResolution", "true", "one line of the spectrogram for each segment");
inline constexpr Option timeResolution = number("timeResolution", "0.001", "s", "time of one line of the spectrogram");
inline constexpr Option inputDataType = wordList("inputDataType", "", inputDataTypeWords,
                                                 "data type of each signal at its source; counts in simulations alone");
inline constexpr Option inputRange = numbers("inputRange", "", "data", "dBFS: full scale of each signal");
inline constexpr Option allowTransientAveraging =
    logical("allowTransientAveraging", "true", "average while a filter bank still fills");
inline constexpr Option useWelchForFilterBankTransient =
    logical("useWelchForFilterBankTransient", "false", "show Welch spectra while a filter bank still fills");
inline constexpr Option useHalideForFIRPolyphaseAnalysis =
    logical("useHalideForFIRPolyphaseAnalysis", "true", "filter bank: use the vectorised kernels");
inline constexpr Option enableMaxSegmentLengthThreshold =
    logical("enableMaxSegmentLengthThreshold", "false", "limit segments to maxSegmentLength");
inline constexpr Option enableDesiredSegmentLengthThreshold =
    logical("enableDesiredSegmentLengthThreshold", "true", "wait for a full segment before the first spectrum");
inline constexpr Option useNaNsInCalculatingAverages =
    logical("useNaNsInCalculatingAverages", "false", "let a NaN bin spoil its average");

inline constexpr auto options = join(
    base::hostFacts, base::measuredChannel,
    list(inputDomain, spectrumType, showSpectrum, showSpectrogram, sampleRate, frequencyOffset, method, frequencyRange,
         defaultSegmentLength, maxSegmentLength, frequencyResolutionMethod, autoRBW, windowInvariantSamplesPerUpdate,
         rbw, autoFFTLength, fftLength, autoFrequencyVector, frequencyVector, numTapsPerBand, windowLength,
         frequencySpan, span, centerFrequency, startFrequency, stopFrequency, overlapPercent, window, customWindow,
         sidelobeAttenuation, averagingMethod, forgettingFactor, autoVBW, vbw, spectralAverages, spectrumUnits,
         inputUnits, referenceLoad, autoFullScale, fullScale, plotMaxHoldTrace, plotMinHoldTrace, spectrogramChannel,
         autoTimeSpan, timeSpan, autoTimeResolution, timeResolution, inputDataType, inputRange, allowTransientAveraging,
         useWelchForFilterBankTransient, useHalideForFIRPolyphaseAnalysis, enableMaxSegmentLengthThreshold,
         enableDesiredSegmentLengthThreshold, useNaNsInCalculatingAverages));

}  // namespace dspwavedecks::catalogue::spectrum

/// The ports of a block-diagram model that carry parameters.
namespace dspwavedecks::catalogue::inputPortParameters {

inline constexpr Option inputPortFrequencyVector =
    logical("inputPortFrequencyVector", "false", "the frequencies arrive as a signal behind the data signals");
inline constexpr Option inputPortRBW =
    logical("inputPortRBW", "false", "the RBW arrives as a signal behind the data signals");
inline constexpr Option inputPortVBW =
    logical("inputPortVBW", "false", "the VBW arrives as a signal behind the data signals");

inline constexpr auto ports = list(inputPortFrequencyVector, inputPortRBW, inputPortVBW);
inline constexpr auto options =
    join(list(base::action, base::clientID, base::numSignals, base::frameSize, base::numChannelsAtSizeChange),
         base::measuredChannel, ports);

}  // namespace dspwavedecks::catalogue::inputPortParameters

/// The bf_spectrum_estimator_filter: the estimator's options and these.
namespace dspwavedecks::catalogue::blockflowSpectrum {

inline constexpr Option sampleTime =
    numbers("sampleTime", "", "s", "frame period of each signal; a new frame size then means a new sample rate")
        .fromHost();
inline constexpr Option fullScaleOverflow =
    logical("fullScaleOverflow", "false", "the source has overflowed, which the message tells");

inline constexpr auto options =
    join(spectrum::options, inputPortParameters::ports, list(sampleTime, fullScaleOverflow));

}  // namespace dspwavedecks::catalogue::blockflowSpectrum

/// The bf_spectrum_data_aggregator_filter, whose setup is that of the base alone.
namespace dspwavedecks::catalogue::spectrumDataAggregator {

inline constexpr Option measurementSignal = base::measurementSignal.readAt(When::Tune);
inline constexpr Option measurementChannel = base::measurementChannel.readAt(When::Tune);
inline constexpr auto options = join(base::hostFacts, base::spansAtSetup, list(measurementSignal, measurementChannel));

}  // namespace dspwavedecks::catalogue::spectrumDataAggregator

/// The spectrum_thinner_filter.
namespace dspwavedecks::catalogue::spectrumThinner {

inline constexpr Option numPoints = wholeNumber("numPoints", "0", "points", "most points of a trace; 0: all");
inline constexpr auto options = list(base::action, base::clientID, base::numSignals, base::numChannels, numPoints);

}  // namespace dspwavedecks::catalogue::spectrumThinner
