#include "TimeDataStrategy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "Board.h"
#include "ExtremeScan.h"
#include "MagPhaseFilter.h"
#include "SimulationMetaDataFilter.h"
#include "wavedeck/DataStorageFilterUtils.h"

namespace dspwavedecks {

namespace {

/// Takes the finite values of a stretch into the limits.
void updateFiniteLimits(const double* values, std::size_t count, double& smallest, double& largest) {
    if (count == 0) {
        return;
    }
    const ExtremePositions extremes = findExtremes(values, count, MinMaxFirstMaximum);
    if (std::isfinite(values[extremes.minimum]) && std::isfinite(values[extremes.maximum])) {
        smallest = std::min(smallest, values[extremes.minimum]);
        largest = std::max(largest, values[extremes.maximum]);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isfinite(values[i])) {
            smallest = std::min(smallest, values[i]);
            largest = std::max(largest, values[i]);
        }
    }
}

}  // namespace

TimeDataStrategy::TimeDataStrategy() = default;

TimeDataStrategy::~TimeDataStrategy() = default;

void TimeDataStrategy::processDataAllSignals(const Buffers& data, int numSignalsGiven, std::vector<int>& numChannels,
                                             std::vector<int>&, std::vector<std::string>& ids, ObjectPointer& message) {
    logPerformanceMetrics(message);
    const auto client = findClient(clientID);
    auto& settings = client->getClientSettings();
    message->set("simulation", SimulationMetaDataFilter::packageImpl(clientID));
    ObjectPointer measurements = new Poco::JSON::Object;
    const bool triggerActive = isTriggerActive();
    if (triggerActive) {
        resetTriggerStateInfo();
    }
    numSignals = numSignalsGiven;
    runAdditionalPreProcessingCode(settings);
    ArrayPointer signals = new Poco::JSON::Array;
    const int count = countSignals(data, numSignals, numChannels, ids);
    for (int signal = 0; signal < count; ++signal) {
        const auto index = static_cast<std::size_t>(signal);
        const int blocks = numChannels[index] + 1;
        const int points = countPoints(data[index], blocks);
        resetDataStartAndEndIdx(points);
        if (!isSignalDataValid(data, signal) || ids[index].empty()) {
            continue;
        }
        computeDataStartAndEndIdx(data, signal, points, triggerActive, settings);
        if (triggerActive && static_cast<unsigned long>(signal) == triggerSignal) {
            addTriggerInformation(data, signal, points, settings, measurements);
        }
        const double offset = client->getOffset(signal);
        ArrayPointer time;
        packageTimePocoArray(data, signal, offset, points, time, settings);
        packageSignalPocoObject(settings, data, signal, numChannels[index], blocks, offset, points, signals, time, ids);
    }
    addStorageInformation(settings, message);
    addMeasurementInformation(measurements);
    runAdditionalPostProcessingCode(settings, ids, message);
    message->set("signals", signals);
    message->set("measurements", measurements);
}

void TimeDataStrategy::resetDataStartAndEndIdx(int numPointsPerChannel) {
    dataEndIdx = numPointsPerChannel;
    dataStartIdx = std::max(numPointsPerChannel - maxPointsPerChannel, 0);
}

void TimeDataStrategy::computeDataStartAndEndIdx(const Buffers& data, int signal, int numPointsPerChannel,
                                                 bool triggerActive, Settings& settings) {
    if (triggerActive) {
        computeTriggerDataStartAndEndIdx(data, signal, numPointsPerChannel, settings);
        return;
    }
    dataStartIdx = 0;
    dataEndIdx = numPointsPerChannel;
    const auto client = findClient(clientID);
    if (client->isDataSourceRepository()) {
        return;
    }
    const auto* const ranges = board::find<std::vector<double>>(settings, MagPhaseFilter::timeRange);
    const auto index = static_cast<std::size_t>(signal);
    if (ranges == nullptr || index >= ranges->size()) {
        dataStartIdx = std::max(numPointsPerChannel - maxPointsPerChannel, 0);
        return;
    }
    // Compared as doubles: a long range over a short sample time need not fit an integer, and a NaN takes the limit.
    const double intervals = (*ranges)[index] / client->getSampleTime(signal);
    const int n = intervals < maxPointsPerChannel ? static_cast<int>(std::max(intervals, -1.0)) : maxPointsPerChannel;
    if (n + 1 < numPointsPerChannel) {
        dataStartIdx = numPointsPerChannel - n - 1;
    }
}

void TimeDataStrategy::packageTimePocoArray(const Buffers& data, int signal, double, int, ArrayPointer& timeArray,
                                            Settings&) {
    const double* const times = data[static_cast<std::size_t>(signal)].data();
    timeArray = packageNumbers(times + dataStartIdx, static_cast<std::size_t>(std::max(dataEndIdx - dataStartIdx, 0)));
}

void TimeDataStrategy::packageSignalPocoObject(Settings& settings, const Buffers& data, int signal, int numChannels,
                                               int numBlocks, double offset, int numPointsPerChannel,
                                               ArrayPointer& signalsArray, ArrayPointer& timeArray,
                                               const std::vector<std::string>& ids) {
    const auto index = static_cast<std::size_t>(signal);
    const auto* const marks = board::find<std::vector<bool>>(settings, MagPhaseFilter::magPhaseData);
    const bool magPhase = marks != nullptr && index < marks->size() && (*marks)[index];
    LimitPair limits;
    ArrayPointer channels = new Poco::JSON::Array;
    for (int channel = 1; channel <= numChannels; ++channel) {
        ArrayPointer values;
        ArrayPointer nanIndex;
        processDataForChannel(data, limits.largest, limits.smallest, signal, channel, values, magPhase, numBlocks,
                              numPointsPerChannel, nanIndex);
        const ChannelFacts facts{"time", timeArray, "timeOffset", offset, subplotOf(channel, numChannels, magPhase)};
        channels->set(static_cast<unsigned>(channel - 1),
                      makeChannel(channel - 1, ids[index], facts, values, nanIndex));
    }
    signalsArray->set(
        static_cast<unsigned>(signal),
        makeSignal(channels, numChannels, ids[index], limitsText(limits.smallest), limitsText(limits.largest)));
}

void TimeDataStrategy::processDataForChannel(const Buffers& data, Limits& dataMax, Limits& dataMin, int signal,
                                             int channel, ArrayPointer& dataArray, bool magPhase, int numBlocks,
                                             int numPointsPerChannel, ArrayPointer& nanArray) {
    const double* const buffer = data[static_cast<std::size_t>(signal)].data();
    const long points = numPointsPerChannel;
    const long start = dataStartIdx + points * channel;
    const long end = std::max(dataEndIdx + points * channel, start);
    const auto count = static_cast<std::size_t>(end - start);
    dataArray = takeArray(count);
    nanPlaces.clear();
    JsonArrayWriter writer(*dataArray);
    writer.appendFinite(buffer + start, count, 0, nanPlaces);
    writer.finish();
    nanArray = packageIntegers(nanPlaces);
    // The blocks of magnitudes, or of all channels, end here; those of phases follow.
    const long phaseStart = magPhase ? points + points * ((numBlocks - 1) / 2) : end;
    const long split = std::clamp(phaseStart, start, end);
    updateFiniteLimits(buffer + start, static_cast<std::size_t>(split - start), dataMin[0], dataMax[0]);
    updateFiniteLimits(buffer + split, static_cast<std::size_t>(end - split), dataMin[1], dataMax[1]);
}

void TimeDataStrategy::addStorageInformation(Settings& settings, ObjectPointer& message) {
    if (!isStageActive("wavedeck_datastorage_filter")) {
        return;
    }
    static const std::string key = "dataStorageFilterUtils";
    const auto* const storage = board::find<wavedeck::DataStorageFilterUtils>(settings, key);
    if (storage == nullptr) {
        return;
    }
    ObjectPointer object = new Poco::JSON::Object;
    object->set("startTimeInBuffer",
                packageNumbers(storage->startTimeInBuffer.data(), storage->startTimeInBuffer.size()));
    object->set("forceLimitBuffer", storage->forceLimitBuffer);
    object->set("startTimeInBufferChanged", storage->startTimeInBufferChanged);
    message->set("dataFilterObj", object);
}

}  // namespace dspwavedecks
