#include "SpectrumEstimatorFilter.h"

#include <cstddef>

#include "AxesOfSignal.h"
#include "Board.h"
#include "ChannelSizeFactors.h"
#include "OptionTable.h"
#include "SpectrumOptions.h"

namespace dspwavedecks {

SpectrumEstimatorFilter::SpectrumEstimatorFilter() : estimator(std::make_unique<SpectrumEstimator>()) {
    registerUsualActions();
}

SpectrumEstimatorFilter::~SpectrumEstimatorFilter() = default;

unsigned long SpectrumEstimatorFilter::getNumPointsPerChannel(const int& signal) {
    const int channels = getChannelCount(signal);
    return channels <= 0 ? 0 : inputLength / static_cast<unsigned long>(channels);
}

void SpectrumEstimatorFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    if (data == nullptr || signal < 0 || signal >= numSignals) {
        return;
    }
    if (!isFrameSizeOf(signal)) {
        takeFrameSize(signal);
    }
    estimate(data, out, signal, numSignals, frameSize);
    publish(signal, !out.empty());
}

/// Whether getNumPointsPerChannel would give what is known already, found without a division.
bool SpectrumEstimatorFilter::isFrameSizeOf(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    if (frameSize.size() != static_cast<std::size_t>(numSignals) || index >= numChannels.size() ||
        numChannels[index] <= 0 || frameSize[index] < 0) {
        return false;
    }
    const auto channels = static_cast<unsigned long>(numChannels[index]);
    return inputLength - channels * static_cast<unsigned long>(frameSize[index]) < channels;
}

void SpectrumEstimatorFilter::takeFrameSize(int signal) {
    frameSize.resize(static_cast<std::size_t>(numSignals));
    setPoints(frameSize, signal, static_cast<int>(getNumPointsPerChannel(signal)));
}

void SpectrumEstimatorFilter::estimate(const double* data, std::vector<double>& out, int signal, int signals,
                                       const std::vector<int>& points) {
    wavedeck::WaveDeckClientInfo& facts = client.get(clientID);
    const bool isReplay = facts.isDataSourceRepository();
    out.clear();  // what stands there is from an earlier frame: only an update gives something
    if (!estimator->isLocked() || !isInputSettled || signals != signalsAtSetup) {
        prepareEstimator(signals, points, isReplay);
    }
    estimator->setIsProcessingNewData(!isReplay);
    estimator->setUseCachedSpectrumData(isReplay && !estimator->isPropertyChanged());
    if (estimator->isFrequencyInputDomain()) {
        estimator->processSpectrum(data, out, signal);
    } else {
        estimator->computeSpectrum(data, out, signal);
    }
    if (out.empty() && isReplay && signal + 1 == signals) {
        facts.setIsDataSourceRepository(false);  // the replay has nothing more to give
    }
}

void SpectrumEstimatorFilter::prepareEstimator(int signals, const std::vector<int>& points, bool isReplay) {
    if (estimator->isLocked() && isInputChanged(signals)) {
        estimator->release(true);  // its stores are laid out for other channels
    }
    if (!estimator->isLocked()) {
        estimator->setup(signals, points, frameSize, numChannels, isComplex, !isReplay);
        signalsAtSetup = signals;
        channelsAtSetup = numChannels;
        complexAtSetup = isComplex;
        isRecordDue = true;
    } else {
        estimator->setFrameSize(points);
        estimator->setUnbufferedFrameSize(frameSize);
    }
    isInputSettled = true;
}

bool SpectrumEstimatorFilter::isInputChanged(int signals) const {
    return signalsAtSetup != signals || channelsAtSetup != numChannels || complexAtSetup != isComplex;
}

void SpectrumEstimatorFilter::setPropertiesOnSetup(const PropertyList& list) {
    namespace options = catalogue::base;
    isInputSettled = false;
    readOptions(list,                                         //
                required<options::clientID>(clientID),        //
                required<options::numChannels>(numChannels),  //
                required<options::frameSize>(frameSize),      //
                required<options::numSignals>(numSignals));
    client.remember(clientID);
    wavedeck::WaveDeckClientInfo& facts = client.get(clientID);
    isComplex.clear();
    std::vector<double> factors;
    for (const int flag : facts.isComplex()) {
        isComplex.push_back(flag != 0 ? 1 : 0);
        factors.push_back(flag != 0 ? 0.5 : 1.0);
    }
    timeBased = facts.getTimeBased();
    isRecordDue = true;  // the board may be another
    addAxesOfSignal(facts.getClientSettings());
    storeChannelSizeFactors(clientID, std::move(factors));
    const bool isReplay = facts.isDataSourceRepository();
    setPropertiesImpl(list);
    if (!estimator->isLocked()) {
        return;
    }
    if (estimator->isPropertyChanged()) {
        estimator->release(!isReplay);
    } else if (isReplay) {
        estimator->setIsProcessingNewData(false);
    } else {
        estimator->release(true);
    }
}

void SpectrumEstimatorFilter::setPropertiesOnTune(const PropertyList& list) {
    setPropertiesImpl(list);
    if (estimator->isLocked() && estimator->isPropertyChanged()) {
        estimator->release(false);
    }
}

void SpectrumEstimatorFilter::onInputSizeChange(const PropertyList& list) {
    isInputSettled = false;
    BaseFilter::onInputSizeChange(list);
    estimator->setFrameSize(frameSize);
    estimator->setUnbufferedFrameSize(frameSize);
}

void SpectrumEstimatorFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    auto& settings = getBoard();
    board::addIfAbsent<spectrumEstimatorMetaDataStruct>(settings, spectrumEstimatorMetaData);
    board::addIfAbsent<unsigned long>(settings, spectrumLength);
    board::addIfAbsent<double>(settings, rbw);
    namespace options = catalogue::spectrum;
    using Setters = SpectrumEstimator;
    using Words = SpectrumEstimatorEnum;
    SpectrumEstimator& target = *estimator;
    // The order counts: methods, spans and windows stand before the values that they gate.
    readOptions(
        list,  //
        ifPresent<options::inputDomain>(target, &Setters::setInputDomain, Words::getInputDomainEnum),
        ifPresent<options::spectrumType>(target, &Setters::setSpectrumType, Words::getSpectrumTypeEnum),
        ifPresent<options::showSpectrum>(target, &Setters::setShowSpectrum),
        ifPresent<options::showSpectrogram>(target, &Setters::setShowSpectrogram),
        ifPresent<options::sampleRate>(target, &Setters::setSampleRate),
        ifPresent<options::frequencyOffset>(target, &Setters::setFrequencyOffset),
        ifPresent<options::method>(target, &Setters::setMethod, Words::getMethodEnum),
        ifPresent<options::frequencyRange>(target, &Setters::setFrequencyRange, Words::getFrequencyRangeEnum),
        ifPresent<options::defaultSegmentLength>(target, &Setters::setDefaultSegmentLength),
        ifPresent<options::maxSegmentLength>(target, &Setters::setMaximumSegmentLength),
        ifPresent<options::frequencyResolutionMethod>(target, &Setters::setFrequencyResolutionMethod,
                                                      Words::getFrequencyResolutionMethodEnum),
        ifPresent<options::autoRBW>(target, &Setters::setAutoRBW),
        ifPresent<options::windowInvariantSamplesPerUpdate>(target, &Setters::setWindowInvariantSamplesPerUpdate),
        ifPresent<options::rbw>(target, &Setters::setRBW),
        ifPresent<options::autoFFTLength>(target, &Setters::setAutoFFTLength),
        ifPresent<options::fftLength>(target, &Setters::setFFTLength),
        ifPresent<options::autoFrequencyVector>(target, &Setters::setAutoFrequencyVector),
        ifPresent<options::frequencyVector>(target, &Setters::setFrequencyVector),
        ifPresent<options::numTapsPerBand>(target, &Setters::setNumTapsPerBand),
        ifPresent<options::windowLength>(target, &Setters::setWindowLength),
        ifPresent<options::frequencySpan>(target, &Setters::setFrequencySpan, Words::getFrequencySpanEnum),
        ifPresent<options::span>(target, &Setters::setSpan),
        ifPresent<options::centerFrequency>(target, &Setters::setCenterFrequency),
        ifPresent<options::startFrequency>(target, &Setters::setStartFrequency),
        ifPresent<options::stopFrequency>(target, &Setters::setStopFrequency),
        ifPresent<options::overlapPercent>(target, &Setters::setOverlapPercent),
        ifPresent<options::window>(target, &Setters::setWindow, Words::getWindowEnum),
        ifPresent<options::customWindow>(target, &Setters::setCustomWindow),
        ifPresent<options::sidelobeAttenuation>(target, &Setters::setSidelobeAttenuation),
        ifPresent<options::averagingMethod>(target, &Setters::setAveragingMethod, Words::getAveragingMethodEnum),
        ifPresent<options::forgettingFactor>(target, &Setters::setForgettingFactor),
        ifPresent<options::autoVBW>(target, &Setters::setAutoVBW), ifPresent<options::vbw>(target, &Setters::setVBW),
        ifPresent<options::spectralAverages>(target, &Setters::setSpectralAverages),
        ifPresent<options::spectrumUnits>(target, &Setters::setSpectrumUnits, Words::getSpectrumUnitsEnum),
        ifPresent<options::inputUnits>(target, &Setters::setInputUnits, Words::getSpectrumUnitsEnum),
        ifPresent<options::referenceLoad>(target, &Setters::setReferenceLoad),
        ifPresent<options::autoFullScale>(target, &Setters::setAutoFullScale),
        ifPresent<options::fullScale>(target, &Setters::setFullScale),
        ifPresent<options::plotMaxHoldTrace>(target, &Setters::setPlotMaxHoldTrace),
        ifPresent<options::plotMinHoldTrace>(target, &Setters::setPlotMinHoldTrace),
        ifPresent<options::spectrogramChannel>(target, &Setters::setSpectrogramChannel),
        ifPresent<options::autoTimeSpan>(target, &Setters::setAutoTimeSpan),
        ifPresent<options::timeSpan>(target, &Setters::setTimeSpan),
        ifPresent<options::autoTimeResolution>(target, &Setters::setAutoTimeResolution),
        ifPresent<options::timeResolution>(target, &Setters::setTimeResolution),
        ifPresent<options::inputDataType>(target, &Setters::setInputDataType),
        ifPresent<options::inputRange>(target, &Setters::setInputRange),
        ifPresent<options::allowTransientAveraging>(target, &Setters::setAllowTransientAveraging),
        ifPresent<options::useWelchForFilterBankTransient>(target, &Setters::setUseWelchForFilterBankTransient),
        ifPresent<options::useHalideForFIRPolyphaseAnalysis>(target, &Setters::setUseHalideForFIRPolyphaseAnalysis),
        ifPresent<options::enableMaxSegmentLengthThreshold>(target, &Setters::setEnableMaxSegmentLengthThreshold),
        ifPresent<options::enableDesiredSegmentLengthThreshold>(target,
                                                                &Setters::setEnableDesiredSegmentLengthThreshold),
        ifPresent<options::useNaNsInCalculatingAverages>(target, &Setters::setUseNaNsInCalculatingAverages));
}

}  // namespace dspwavedecks
