#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "SpectrumEstimatorEnum.h"

namespace dspwavedecks {

/// The settings of a SpectrumEstimator, as its setters and its last setup left them.
struct SpectrumEstimatorOptions {
    SpectrumEstimatorEnum::InputDomain inputDomain = SpectrumEstimatorEnum::InputDomain::time;
    SpectrumEstimatorEnum::SpectrumType spectrumType = SpectrumEstimatorEnum::SpectrumType::power;
    SpectrumEstimatorEnum::Method method = SpectrumEstimatorEnum::Method::welch;
    SpectrumEstimatorEnum::FrequencyRange frequencyRange = SpectrumEstimatorEnum::FrequencyRange::centered;
    SpectrumEstimatorEnum::FrequencyResolutionMethod frequencyResolutionMethod =
        SpectrumEstimatorEnum::FrequencyResolutionMethod::rbw;
    SpectrumEstimatorEnum::FrequencySpan frequencySpan = SpectrumEstimatorEnum::FrequencySpan::full;
    SpectrumEstimatorEnum::Window window = SpectrumEstimatorEnum::Window::hann;
    SpectrumEstimatorEnum::AveragingMethod averagingMethod = SpectrumEstimatorEnum::AveragingMethod::exponential;
    SpectrumEstimatorEnum::SpectrumUnits spectrumUnits = SpectrumEstimatorEnum::SpectrumUnits::dbm;
    SpectrumEstimatorEnum::SpectrumUnits inputUnits = SpectrumEstimatorEnum::SpectrumUnits::dbm;
    bool autoRBW = true;
    bool autoVBW = true;
    bool autoTimeSpan = true;
    bool autoTimeResolution = true;
    bool autoFFTLength = true;
    bool autoFrequencyVector = true;
    bool autoFullScale = true;
    bool windowInvariantSamplesPerUpdate = false;
    bool plotMinHoldTrace = false;
    bool plotMaxHoldTrace = false;
    bool useHalideForFIRPolyphaseAnalysis = true;
    bool showSpectrum = true;
    bool showSpectrogram = false;
    bool allowTransientAveraging = true;
    bool useWelchForFilterBankTransient = false;
    bool enableMaxSegmentLengthThreshold = false;
    bool enableDesiredSegmentLengthThreshold = true;
    bool useNaNsInCalculatingAverages = false;
    bool fullScaleOverflow = false;
    double sampleRate = 10000.0;
    double rbw = 10.0;
    double sidelobeAttenuation = 60.0;
    double overlapPercent = 0.0;
    double referenceLoad = 1.0;
    double fullScale = 1.0;
    double timeSpan = 0.1;
    double timeResolution = 0.001;
    double forgettingFactor = 0.9;
    double vbw = 10.0;
    double startFrequency = -1000.0;
    double stopFrequency = 1000.0;
    double spanProperty = 10000.0;
    double centerFrequency = 0.0;
    std::size_t fftLength = 1024;
    std::size_t windowLength = 1024;
    std::size_t minimumSegmentLength = 1;
    std::size_t maximumSegmentLength = 1000000;
    std::size_t defaultSegmentLength = 1024;
    std::size_t spectralAverages = 1;
    std::size_t spectrogramChannel = 0;
    std::size_t numTapsPerBand = 12;
    std::size_t outputFrequencyVector = 1;  ///< rows in front of the channels: 1 with the frequency grid
    std::vector<std::string> inputDataType;
    std::vector<double> inputRange;
    std::vector<double> customWindow;
    std::vector<double> frequencyOffset;
    int numSignals = 0;
    std::vector<int> numChannels;  ///< raw counts
    std::vector<int> frameSize;
    std::vector<int> unbufferedFrameSize;
    std::vector<int> isComplex;  ///< 0 or 1
    bool isProcessingNewData = true;
    bool useCachedSpectrumData = false;
};

}  // namespace dspwavedecks
