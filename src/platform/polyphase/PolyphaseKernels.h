#pragma once

#include <complex>
#include <cstddef>

/// One segment of complex samples through a polyphase analysis bank: `dspwavedecks::polyphase::analyze` in the form in
/// which a filter bank calls a kernel.
/// samples      [numSamples]
/// taps         tap store of `dspwavedecks::polyphase::arrangeTaps`
/// delayLines   delay store of the channel, for complex samples; it also holds what the bands give to the next segment
/// upperSums    [numBands] the half for what is under way; not touched, since the delay store keeps that
/// lowerSums    [numBands] the half for what is complete: the transform's input, written over
/// numSamples, numTapsPerBand, numBands  sizes; `decimation` equals `numBands`
/// The channel count, the strides and what `phase` and `increment` point to are part of the calling form and are 1.
void processHalide_PolyphaseAnalysisCRD(const std::complex<double>* samples, const double* taps,
                                        std::complex<double>* delayLines, std::complex<double>* upperSums,
                                        std::complex<double>* lowerSums, std::size_t numSamples,
                                        std::size_t numTapsPerBand, std::size_t numChannels, std::size_t numBands,
                                        std::size_t decimation, std::size_t inputStride, std::size_t outputStride,
                                        const int* phase, const int* increment);

/// The same for real samples, delay lines and sums.
void processHalide_PolyphaseAnalysisRRD(const double* samples, const double* taps, double* delayLines,
                                        double* upperSums, double* lowerSums, std::size_t numSamples,
                                        std::size_t numTapsPerBand, std::size_t numChannels, std::size_t numBands,
                                        std::size_t decimation, std::size_t inputStride, std::size_t outputStride,
                                        const int* phase, const int* increment);
