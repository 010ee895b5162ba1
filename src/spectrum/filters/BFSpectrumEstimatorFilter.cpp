#include "BFSpectrumEstimatorFilter.h"

#include <algorithm>
#include <cmath>

#include "BFInputPortParametersHandlerFilter.h"
#include "OptionTable.h"
#include "SpectrumOptions.h"

namespace dspwavedecks {

namespace {

/// Values that are not a number take no part.
double largestOf(const double* values, std::size_t count) {
    double largest = -HUGE_VAL;
    for (std::size_t i = 0; i < count; ++i) {
        largest = values[i] > largest ? values[i] : largest;
    }
    return largest;
}

double largestMagnitudeOf(const double* real, const double* imaginary, std::size_t count) {
    double largest = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double magnitude = std::sqrt(real[i] * real[i] + imaginary[i] * imaginary[i]);
        largest = magnitude > largest ? magnitude : largest;
    }
    return largest;
}

}  // namespace

BFSpectrumEstimatorFilter::BFSpectrumEstimatorFilter() = default;

BFSpectrumEstimatorFilter::~BFSpectrumEstimatorFilter() = default;

void BFSpectrumEstimatorFilter::setPropertiesOnSetup(const PropertyList& list) {
    SpectrumEstimatorFilter::setPropertiesOnSetup(list);
    const auto count = static_cast<std::size_t>(std::max(numSignals, 0));
    bfFrameSize.assign(count, 0);
    inputRange.resize(count, 1.0);
    inputRangeKnown = false;
}

void BFSpectrumEstimatorFilter::setPropertiesImpl(const PropertyList& list) {
    SpectrumEstimatorFilter::setPropertiesImpl(list);
    namespace ports = catalogue::inputPortParameters;
    namespace options = catalogue::blockflowSpectrum;
    readOptions(list,                                                                  //
                ifPresent<ports::inputPortFrequencyVector>(inputPortFrequencyVector),  //
                ifPresent<ports::inputPortRBW>(inputPortRBW),                          //
                ifPresent<ports::inputPortVBW>(inputPortVBW),                          //
                ifPresent<options::sampleTime>(sampleTime),                            //
                ifPresent<options::fullScaleOverflow>(*estimator, &SpectrumEstimator::setFullScaleOverflow));
}

void BFSpectrumEstimatorFilter::onInputSizeChange(const PropertyList& list) {
    SpectrumEstimatorFilter::onInputSizeChange(list);
    if (frameSize.empty() || sampleTime.empty()) {
        return;
    }
    const double sampleRate = frameSize.front() / sampleTime.front();
    // Without a frame period, or with a frame of nothing, there is no rate to change to.
    if (std::isfinite(sampleRate) && sampleRate > 0.0 && estimator->isValidSampleRate(sampleRate)) {
        estimator->setSampleRateForFrameSizeChange(sampleRate);
    }
}

unsigned long BFSpectrumEstimatorFilter::getNumPointsPerChannel(const int& signal) {
    const auto index = static_cast<std::size_t>(signal);
    const auto channels = static_cast<unsigned long>(std::max(getChannelCount(signal), 0));
    const auto size = static_cast<unsigned long>(index < frameSize.size() ? std::max(frameSize[index], 0) : 0);
    const bool hasHead = client.get(clientID).usingStreamPlugInBF();
    dataEndIndex = inputLength;
    dataStartIndex = hasHead ? inputLength / (1 + channels * size) : 0;
    return channels == 0 ? 0 : (dataEndIndex - dataStartIndex) / channels;
}

int BFSpectrumEstimatorFilter::getNumDataSignals() const {
    return numSignals - (inputPortVBW ? 1 : 0) - (inputPortRBW ? 1 : 0) - (inputPortFrequencyVector ? 1 : 0);
}

void BFSpectrumEstimatorFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    out.clear();
    const auto index = static_cast<std::size_t>(signal);
    if (index >= bfFrameSize.size() || !wavedeck::WaveDeckClientRegistry::sInstance.isClientValid(clientID)) {
        return;
    }
    setPoints(bfFrameSize, signal, static_cast<int>(getNumPointsPerChannel(signal)));
    if (signal == 0) {
        takePortParameters();
    }
    if (data == nullptr || bfFrameSize[index] == 0 || signal >= getNumDataSignals()) {
        return;
    }
    estimate(data + dataStartIndex, out, signal, getNumDataSignals(), bfFrameSize);
    updateInputRange(data, signal);
    publish(signal, !out.empty());
    if (inputPortRBW) {
        publishRBW();  // the entry holds what the port delivered
    }
}

/// Takes over what the ports in use have delivered; a port that has delivered nothing yet leaves its setting alone.
void BFSpectrumEstimatorFilter::takePortParameters() {
    using Ports = BFInputPortParametersHandlerFilter;
    SpectrumEstimator& target = *estimator;
    if (inputPortFrequencyVector && Ports::isFrequencyVectorSourceInputPort(clientID)) {
        target.setFrequencyVector(Ports::getFrequencyVector(clientID));
        // Whether the new grid is uniform, and its step, are known from a setup only. With time data the next frame
        // works the change in without one.
        if (target.isLocked() && target.isPropertyChanged() && target.isFrequencyInputDomain()) {
            target.release(false);
        }
    }
    if (inputPortRBW && Ports::isRBWSourceInputPort(clientID)) {
        target.setRBW(Ports::getRBW(clientID));
        if (target.isLocked() && target.isPropertyChanged() && !target.isFrequencyInputDomain()) {
            target.release(false);
        }
    }
    if (inputPortVBW && Ports::isVBWSourceInputPort(clientID)) {
        target.setVBW(Ports::getVBW(clientID));
        if (target.isLocked() && target.isPropertyChanged()) {
            target.release(false);
        }
    }
}

double BFSpectrumEstimatorFilter::findInputRange(const double* data, int signal) const {
    const unsigned long count = dataEndIndex - dataStartIndex;
    const double* const first = data + dataStartIndex;
    // Of a real signal the largest value, not the largest magnitude: meant so.
    const double largest =
        isComplexSignal(signal) ? largestMagnitudeOf(first, first + count / 2, count / 2) : largestOf(first, count);
    return largest > 0.0 ? largest : 1.0;
}

void BFSpectrumEstimatorFilter::updateInputRange(const double* data, int signal) {
    if (inputRangeKnown || !estimator->isdBFS() || !estimator->isAutoFullScale()) {
        return;
    }
    if (estimator->isFloatingPointInput(signal)) {
        inputRange[static_cast<std::size_t>(signal)] = findInputRange(data, signal);
        estimator->setInputRange(inputRange);
    }
    inputRangeKnown = signal + 1 == getNumDataSignals();
}

}  // namespace dspwavedecks
