#include "FrequencyDataStrategy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ExtremeScan.h"
#include "NumberText.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumEstimatorFilter.h"
#include "SpectrumThinnerFilter.h"
#include "TruncateTo.h"

namespace dspwavedecks {

FrequencyDataStrategy::FrequencyDataStrategy() = default;

FrequencyDataStrategy::~FrequencyDataStrategy() = default;

void FrequencyDataStrategy::processDataAllSignals(const Buffers& data, int numSignalsGiven,
                                                  std::vector<int>& numChannels, std::vector<int>& numPoints,
                                                  std::vector<std::string>& ids, ObjectPointer& message) {
    logPerformanceMetrics(message);
    addTimeAndSpectrumInformation(message);
    if (spectrumLength == 0) {
        return;
    }
    numSignals = numSignalsGiven;
    ArrayPointer signals = new Poco::JSON::Array;
    ArrayPointer phaseNoise = new Poco::JSON::Array;
    const bool withPhaseNoise = hasPhaseNoise();
    const int count = countSignals(data, getNumDataSignals(), numChannels, ids);
    for (int signal = 0; signal < count; ++signal) {
        if (!isSignalDataValid(data, signal)) {
            continue;
        }
        const auto index = static_cast<std::size_t>(signal);
        const auto position = static_cast<unsigned>(signal);
        const int framePoints = index < numPoints.size() ? numPoints[index] : 0;
        ObjectPointer object = packageSignal(data, signal, numChannels, framePoints, ids[index]);
        if (withPhaseNoise) {
            phaseNoise->set(position, packagePhaseNoise(signal, getNumChannels(signal, numChannels)));
        }
        signals->set(position, object);
    }
    ObjectPointer measurements = new Poco::JSON::Object;
    addMeasurementInformation(measurements);
    message->set("signals", signals);
    message->set("measurements", measurements);
    if (withPhaseNoise) {
        message->set("phaseNoise", phaseNoise);
    }
}

void FrequencyDataStrategy::addTimeAndSpectrumInformation(ObjectPointer& message) {
    const ObjectPointer spectrum = SpectrumEstimatorFilter::packageImpl(clientID);
    message->set("spectrum", spectrum);
    spectrumLength = spectrum->getValue<int>("spectrumLength");
    numSpectrogramLines = spectrum->getValue<int>("numSpectrogramLines");
    plotMaxHoldTrace = spectrum->getValue<bool>("plotMaxHoldTrace");
    plotMinHoldTrace = spectrum->getValue<bool>("plotMinHoldTrace");
    showSpectrum = spectrum->getValue<bool>("showSpectrum");
    showSpectrogram = spectrum->getValue<bool>("showSpectrogram");
    linearFrequencyVector = spectrum->getValue<bool>("linearFrequencyVector");
    minDeltaF = spectrum->getValue<double>("minDeltaF");
    frequencyOffset.clear();
    for (const Poco::Dynamic::Var& offset : *spectrum->getArray("frequencyOffset")) {
        frequencyOffset.push_back(offset.extract<double>());
    }
    message->set("simulation", SimulationMetaDataFilter::packageImpl(clientID));
}

DataStrategy::ObjectPointer FrequencyDataStrategy::packageSignal(const Buffers& data, int signal,
                                                                 std::vector<int>& numChannels, int framePoints,
                                                                 const std::string& id) {
    const int channels = getNumChannels(signal, numChannels);
    computeCurrentInputMetrics(data, signal, channels, framePoints);
    numInterpolationPoints = 0;
    ArrayPointer frequencies;
    if (linearFrequencyVector) {
        packageFrequencyPocoArray(data, signal, frequencies);
    } else {
        packageInterpFrequencyPocoArray(data, signal, frequencies);
    }
    ArrayPointer channelArray = new Poco::JSON::Array;
    const int walks = std::max(channels, 1);  // a signal without channels has one, which is empty
    std::vector<double> dataMin(static_cast<std::size_t>(walks), 0.0);
    std::vector<double> dataMax(static_cast<std::size_t>(walks), 0.0);
    for (int channel = 0; channel < walks; ++channel) {
        const auto index = static_cast<std::size_t>(channel);
        const auto [values, nanIndex] =
            processDataForChannel(data, dataMax[index], dataMin[index], signal, channel, framePoints);
        const auto offset = static_cast<std::size_t>(getFrequencyOffsetIdx(signal, channel, numChannels));
        const ChannelFacts facts{"frequency", frequencies, "frequencyOffset",
                                 offset < frequencyOffset.size() ? frequencyOffset[offset] : 0.0, 0};
        channelArray->set(static_cast<unsigned>(channel), makeChannel(channel, id, facts, values, nanIndex));
    }
    ObjectPointer object =
        makeSignal(channelArray, channels, id, numberText(*std::min_element(dataMin.begin(), dataMin.end())),
                   numberText(*std::max_element(dataMax.begin(), dataMax.end())));
    object->set("spectrumLength", numPointsPerChannel);
    object->set("numInterpolationPoints", numInterpolationPoints);
    addMaxMinHoldInformation(object, signal, channels);
    return object;
}

void FrequencyDataStrategy::addMaxMinHoldInformation(ObjectPointer& signalObject, int signal, int numChannels) {
    if ((plotMaxHoldTrace || plotMinHoldTrace) && showSpectrum) {
        signalObject->set("traceHold", SpectrumEstimatorFilter::packageImpl(clientID, signal, numChannels,
                                                                            numPointsPerChannel, arrayPool()));
    }
}

bool FrequencyDataStrategy::isChannelDataValid(const Buffers&, int) const {
    return true;
}

int FrequencyDataStrategy::getNumDataSignals() {
    return numSignals;
}

int FrequencyDataStrategy::getNumChannels(int signal, const std::vector<int>& numChannels) {
    return numChannels[static_cast<std::size_t>(signal)];
}

int FrequencyDataStrategy::getNumPointsPerChannel(int signal) {
    if (!isStageActive("spectrum_thinner_filter")) {
        return spectrumLength;
    }
    const auto* const lengths = SpectrumThinnerFilter::getThinnedSpectrumLength(clientID);
    const auto index = static_cast<std::size_t>(signal);
    return lengths != nullptr && index < lengths->size() ? static_cast<int>((*lengths)[index]) : 0;
}

int FrequencyDataStrategy::getFrequencyOffsetIdx(int signal, int base, const std::vector<int>& counts) {
    int index = base;
    for (int before = 0; before < signal; ++before) {
        index += counts[static_cast<std::size_t>(before)];
    }
    return index;
}

void FrequencyDataStrategy::computeCurrentInputMetrics(const Buffers& data, int signal, int numChannels, int) {
    const std::vector<double>& buffer = data[static_cast<std::size_t>(signal)];
    if (buffer.empty()) {
        return;
    }
    numPointsPerChannel = getNumPointsPerChannel(signal);
    pointsPerBlock = countPoints(buffer, numHeaderBlocks + numChannels);
    numLinesInBuffer = numPointsPerChannel == 0 ? 0 : pointsPerBlock / numPointsPerChannel;
}

std::size_t FrequencyDataStrategy::countFrequencies(std::size_t count) const {
    return std::min(static_cast<std::size_t>(std::max(numPointsPerChannel, 0)), count);
}

DataStrategy::ArrayPointer FrequencyDataStrategy::packageFrequencies(const double* frequencies, std::size_t count) {
    return packageNumbers(frequencies, countFrequencies(count));
}

void FrequencyDataStrategy::packageFrequencyPocoArray(const Buffers& data, int signal, ArrayPointer& frequencyArray) {
    const std::vector<double>& buffer = data[static_cast<std::size_t>(signal)];
    frequencyArray = packageFrequencies(buffer.data(), buffer.size());
}

void FrequencyDataStrategy::packageInterpFrequencyPocoArray(const Buffers& data, int signal,
                                                            ArrayPointer& frequencyArray) {
    packageFrequencyPocoArray(data, signal, frequencyArray);
    const std::vector<double>& buffer = data[static_cast<std::size_t>(signal)];
    countInterpolationPoints(buffer.data(), buffer.size());
}

void FrequencyDataStrategy::countInterpolationPoints(const double* frequencies, std::size_t count) {
    // Gaps of more steps than this are divided, not stepped through.
    constexpr double mostSteps = 65536.0;
    numInterpolationPoints = 0;
    if (!(minDeltaF > 0.0)) {
        return;
    }
    double points = 0.0;
    for (std::size_t i = 0; i + 1 < countFrequencies(count); ++i) {
        const double steps = (frequencies[i + 1] - frequencies[i]) / minDeltaF;
        if (steps > mostSteps) {
            points += std::ceil(steps) - 1.0;
            continue;
        }
        for (double x = frequencies[i] + minDeltaF; x < frequencies[i + 1]; x += minDeltaF) {
            points += 1.0;
        }
    }
    numInterpolationPoints = truncateTo<int>(points);
}

void FrequencyDataStrategy::computeSpectrumDataStartAndEndIdx(int channel, int) {
    dataEndIdx = pointsPerBlock + pointsPerBlock * (channel + numHeaderBlocks);
    dataStartIdx = dataEndIdx - numPointsPerChannel;
}

void FrequencyDataStrategy::computeSpectrogramDataStartAndEndIdx(int channel, int line, int) {
    dataStartIdx = pointsPerBlock * (channel + numHeaderBlocks + 1) - numPointsPerChannel * (line + 1);
    dataEndIdx = dataStartIdx + numPointsPerChannel;
}

FrequencyDataStrategy::ChannelArrays FrequencyDataStrategy::processDataForChannel(const Buffers& data, double& dataMax,
                                                                                  double& dataMin, int signal,
                                                                                  int channel, int framePoints) {
    const int lines = showSpectrogram ? std::min(numLinesInBuffer, numSpectrogramLines) : 1;
    ChannelArrays arrays;
    arrays.data = takeArray(static_cast<std::size_t>(std::max(lines, 0)) *
                            static_cast<std::size_t>(std::max(numPointsPerChannel, 0)));
    nanPlaces.clear();
    dataStartIdx = 0;
    dataEndIdx = 0;
    JsonArrayWriter writer(*arrays.data);
    if (showSpectrogram) {
        processSpectrogramDataForChannel(data, signal, channel, framePoints, writer);
    } else {
        processSpectrumDataForChannel(data, signal, channel, framePoints, writer);
    }
    writer.finish();
    arrays.nanIndex = packageIntegers(nanPlaces);
    // With a spectrogram these are the points of the oldest line that was written.
    dataStartIdx = dataEndIdx - numPointsPerChannel;
    if (isChannelDataValid(data, signal) && isStretchInBuffer(data, signal)) {
        const double* const last = data[static_cast<std::size_t>(signal)].data() + dataStartIdx;
        const auto count = static_cast<std::size_t>(numPointsPerChannel);
        const ExtremePositions extremes = findExtremes(last, count, MinMaxFirstMaximum);
        dataMin = last[extremes.minimum];
        dataMax = last[extremes.maximum];
    }
    return arrays;
}

void FrequencyDataStrategy::processSpectrumDataForChannel(const Buffers& data, int signal, int channel, int framePoints,
                                                          JsonArrayWriter& writer) {
    computeSpectrumDataStartAndEndIdx(channel, framePoints);
    appendStretch(data, signal, writer);
}

/// The newest line, then the next older.
void FrequencyDataStrategy::processSpectrogramDataForChannel(const Buffers& data, int signal, int channel,
                                                             int framePoints, JsonArrayWriter& writer) {
    const int lines = std::min(numLinesInBuffer, numSpectrogramLines);
    for (int line = 0; line < lines; ++line) {
        computeSpectrogramDataStartAndEndIdx(channel, line, framePoints);
        if (!appendStretch(data, signal, writer)) {
            return;
        }
    }
}

bool FrequencyDataStrategy::appendStretch(const Buffers& data, int signal, JsonArrayWriter& writer) {
    if (!isChannelDataValid(data, signal) || !isStretchInBuffer(data, signal)) {
        return false;
    }
    writer.appendFinite(data[static_cast<std::size_t>(signal)].data() + dataStartIdx,
                        static_cast<std::size_t>(dataEndIdx - dataStartIdx), 0.0, nanPlaces);
    return true;
}

/// A thinner, or a block that is shorter than a spectrum, may ask for a stretch that is not there.
bool FrequencyDataStrategy::isStretchInBuffer(const Buffers& data, int signal) const {
    return 0 <= dataStartIdx && dataStartIdx < dataEndIdx &&
           static_cast<std::size_t>(dataEndIdx) <= data[static_cast<std::size_t>(signal)].size();
}

}  // namespace dspwavedecks
