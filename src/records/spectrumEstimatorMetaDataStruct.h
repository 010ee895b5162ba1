#pragma once

#include <cstdint>
#include <vector>

namespace dspwavedecks {

/// The single figures of a spectrum estimator's record.
struct spectrumEstimatorFigures {
    std::uint64_t segmentLength = 0;          ///< samples of one segment, after zoom decimation
    std::uint64_t fftLength = 0;              ///< points of one transform
    std::uint64_t spectrumLength = 0;         ///< S, points of one channel's spectrum
    std::uint64_t numSegments = 0;            ///< segments in the last update
    std::uint64_t numSpectrumBlocks = 0;      ///< spectrogram lines in the last update
    std::uint64_t numSpectrogramLines = 100;  ///< lines that the time span holds
    std::uint64_t numSamplesPerUpdate = 0;    ///< input samples from one update to the next
    std::uint64_t spectrogramChannel = 0;     ///< channel, within its signal, that the spectrogram shows
    std::uint64_t numSamplesProcessed = 0;    ///< samples in the segments so far, each signal counted
    std::uint64_t numUpdatesProcessed = 0;    ///< segments so far
    std::uint64_t numSpectralAverages = 1;    ///< averages that the forgetting factor amounts to
    std::uint64_t numAdditionalSamples = 0;   ///< samples that the first whole segment still lacks
    double sampleRate = 0.0;                  ///< Hz, of the input
    double rbw = 0.0;                         ///< Hz, resolution bandwidth of whole segments
    double transientRBW = 0.0;                ///< Hz, resolution bandwidth of the last update
    double vbw = 0.0;                         ///< Hz, video bandwidth that the averaging amounts to
    double enbw = 0.0;                        ///< equivalent noise bandwidth of the window, bins
    double timeResolution = 0.0;              ///< s, of a spectrogram line
    double timeSpan = 0.0;                    ///< s, of the whole spectrogram
    double timeIncrement = 0.0;               ///< s, from one spectrogram line to the next
    double forgettingFactor = 0.0;            ///< in use
    double minDeltaF = 1.0;                   ///< Hz, smallest step of the frequency grid
    bool plotMaxHoldTrace = false;
    bool plotMinHoldTrace = false;
    bool showSpectrum = true;
    bool showSpectrogram = false;
    bool isNewDataReady = false;           ///< an update has been computed
    bool linearFrequencyVector = true;     ///< the frequency grid has one step
    bool maxSegmentLengthMet = false;      ///< the segment that was asked for is longer than the longest allowed
    bool desiredSegmentLengthMet = false;  ///< segments are whole; before, updates come from a growing segment
    bool fullScaleOverflow = false;
    bool resetCachedNumSamplesProcessed = false;  ///< the sample counters began again
    bool resetSignalBuffers = false;              ///< what a consumer holds of earlier updates no longer fits
    bool dataHasNaNs = false;                     ///< a NaN or an infinity came in since the last reset
    bool useNaNsInCalculatingAverages = false;
};

/// What a spectrum estimator works with and what its last update gave, as it stands on the settings board.
/// S is spectrumLength; channels are real counts, a complex signal's pair of columns being one.
struct spectrumEstimatorMetaDataStruct : spectrumEstimatorFigures {
    std::vector<double> maxHoldTrace;     ///< [all channels * S] display units; -infinity where nothing came yet
    std::vector<double> minHoldTrace;     ///< [all channels * S] display units; +infinity where nothing came yet
    std::vector<double> frequencyVector;  ///< [S] Hz
    std::vector<double> frequencyOffset;  ///< Hz
    std::vector<std::vector<double>> spectrumData;  ///< a signal: [channels * numSpectrumBlocks * S] display units
    std::vector<int> numChannels;                   ///< real channels of each signal
};

}  // namespace dspwavedecks
