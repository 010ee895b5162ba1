#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "AlignedVector.h"

namespace dspwavedecks {

/// What the settings of a SpectrumEstimator amount to: worked out by its setup, and by updates from segments that are
/// not whole yet.
struct SpectrumEstimatorDerived {
    static constexpr double firStopbandAttenuation = 140.0;  ///< dB, of every filter designed here
    static constexpr std::size_t numSpectrogramLines = 100;  ///< unless a time span gives their number

    /// The channels of a signal among those of all signals.
    struct SignalPlace {
        std::size_t firstChannel;
        std::size_t numChannels;
        bool isComplex;
    };

    double actualSampleRate = 10000.0;
    double span = 10000.0;
    double fullSpan = 10000.0;
    double desiredRBW = 9.76;
    double actualRBW = 9.76;
    double transientRBW = 9.76;
    double enbw = 1.0;
    double windowPower = 0.0;
    double actualTimeSpan = 0.1;
    double actualTimeResolution = 0.001;
    double timeIncrement = 1.0;
    double blockFraction = 0.0;  ///< share of a segment by which a spectrogram line misses the resolution asked for
    double deltaFrequency = 0.0;
    double actualForgettingFactor = 0.9;
    double actualVBW = 10.0;
    std::size_t actualFFTLength = 1024;
    std::size_t actualSegmentLength = 1024;
    std::size_t transientSegmentLength = 1024;
    std::size_t desiredSegmentLength = 1024;
    std::size_t transientNumSamplesPerUpdate = 1024;
    std::size_t actualNumSamplesPerUpdate = 1024;
    std::size_t desiredNumSamplesPerUpdate = 1024;
    std::size_t numOverlapSamples = 0;
    std::size_t totalNumChannels = 0;
    std::vector<SignalPlace> signalPlaces;
    std::size_t spectrumLength = 1024;
    std::size_t numSegmentsPerBlock = 1;
    std::size_t actualSpectralAverages = 1;
    std::size_t firGroupDelay = 1024;
    std::size_t zoomDecimationFactor = 1;
    bool zoomFFTEnabled = false;
    bool linearFrequencyVector = true;
    bool maxSegmentLengthMet = false;
    std::vector<double> frequencyVector;  ///< the grid in use, also the one that a user gave
    std::array<std::size_t, 2> frequencyVectorRange{0, 0};
    std::vector<double> windowData;
    std::vector<double> filterbankPolyphaseMatrix;
    std::vector<double> zoomFilter;  ///< [48 d] anti-alias filter, branch by branch
    std::array<AlignedVector<double>, 2>
        zoomMixedFilter;  ///< its real and imaginary taps at the centre, last tap first
};

}  // namespace dspwavedecks
