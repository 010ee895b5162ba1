#include "FrameDataStrategy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "Board.h"
#include "ExtremeScan.h"
#include "MagPhaseFilter.h"
#include "PeakFinderFilter.h"
#include "SignalStatisticsFilter.h"
#include "SimulationMetaDataFilter.h"

namespace dspwavedecks {

namespace {

/// Extremes of a stretch by comparison, each stored only if it is finite. A NaN at its head hides what follows.
void storeLimits(const double* values, std::size_t count, double& smallest, double& largest) {
    if (count == 0) {
        return;
    }
    const ExtremePositions extremes = findExtremes(values, count, MinMaxFirstMaximum);
    if (std::isfinite(values[extremes.minimum])) {
        smallest = values[extremes.minimum];
    }
    if (std::isfinite(values[extremes.maximum])) {
        largest = values[extremes.maximum];
    }
}

}  // namespace

FrameDataStrategy::FrameDataStrategy() = default;

FrameDataStrategy::~FrameDataStrategy() = default;

void FrameDataStrategy::processDataAllSignals(const Buffers& data, int numSignalsGiven, std::vector<int>& numChannels,
                                              std::vector<int>&, std::vector<std::string>& ids,
                                              ObjectPointer& message) {
    logPerformanceMetrics(message);
    const auto client = findClient(clientID);
    const ObjectPointer simulation = SimulationMetaDataFilter::packageImpl(clientID);
    numSignals = numSignalsGiven;
    ArrayPointer signals = new Poco::JSON::Array;
    const int count = countSignals(data, numSignals, numChannels, ids);
    for (int signal = 0; signal < count; ++signal) {
        if (!isSignalDataValid(data, signal)) {
            continue;
        }
        const auto index = static_cast<std::size_t>(signal);
        const FrameLayout layout = findLayout(*client, signal, numChannels[index]);
        signals->set(static_cast<unsigned>(signal),
                     packageSignal(data[index], layout, client->getOffset(signal), ids[index]));
    }
    ObjectPointer measurements = new Poco::JSON::Object;
    attachMeasurements(measurements);
    message->set("signals", signals);
    message->set("measurements", measurements);
    message->set("simulation", simulation);
}

FrameDataStrategy::FrameLayout FrameDataStrategy::findLayout(wavedeck::WaveDeckClientInfo& client, int signal,
                                                             int channels) const {
    const auto* const marks = board::find<std::vector<bool>>(client.getClientSettings(), MagPhaseFilter::magPhaseData);
    const auto index = static_cast<std::size_t>(signal);
    const bool magPhase = marks != nullptr && index < marks->size() && (*marks)[index];
    return {channels, magPhase, channels / 2};
}

void FrameDataStrategy::attachMeasurements(ObjectPointer& measurements) const {
    attachIfActive(measurements, "stats", {"signal_statistics_filter"}, SignalStatisticsFilter::packageImpl);
    attachPeaks(measurements);
}

void FrameDataStrategy::attachPeaks(ObjectPointer& measurements) const {
    attachIfActive(measurements, "peaks", {"peak_finder_filter"}, PeakFinderFilter::packageImpl);
}

DataStrategy::ObjectPointer FrameDataStrategy::packageSignal(const std::vector<double>& buffer,
                                                             const FrameLayout& layout, double offset,
                                                             const std::string& id) {
    const auto points = static_cast<std::size_t>(countPoints(buffer, layout.channels + 1));
    // Here the offset is added to the axis, and it is sent apart as well.
    ChannelFacts facts{"sample", packageNumbers(buffer.data(), points, offset), "offset", offset, 0};
    ArrayPointer channels = new Poco::JSON::Array;
    for (int channel = 1; channel <= layout.channels; ++channel) {
        facts.subplotNum = subplotOf(channel, layout.channels, layout.magPhase);
        channels->set(
            static_cast<unsigned>(channel - 1),
            packageChannel(buffer.data() + points * static_cast<std::size_t>(channel), points, channel, id, facts));
    }
    const LimitPair limits = findLimits(buffer, points, layout);
    return makeSignal(channels, layout.channels, id, limitsText(limits.smallest), limitsText(limits.largest));
}

DataStrategy::LimitPair FrameDataStrategy::findLimits(const std::vector<double>& buffer, std::size_t points,
                                                      const FrameLayout& layout) {
    LimitPair limits;
    const double* const values = buffer.data();
    const std::size_t end = buffer.size();
    if (!layout.magPhase) {
        storeLimits(values + points, end - points, limits.smallest[0], limits.largest[0]);
        return limits;
    }
    const std::size_t half = points * static_cast<std::size_t>(std::max(layout.half, 0));
    storeLimits(values + points, end - half - points, limits.smallest[0], limits.largest[0]);
    // The second stretch begins on the last point of the magnitudes: meant so.
    const std::size_t phases = std::max<std::size_t>(points + half, 1) - 1;
    storeLimits(values + phases, end - phases, limits.smallest[1], limits.largest[1]);
    return limits;
}

DataStrategy::ObjectPointer FrameDataStrategy::packageChannel(const double* values, std::size_t points, int channel,
                                                              const std::string& id, const ChannelFacts& facts) {
    ArrayPointer array = takeArray(points);
    nanPlaces.clear();
    JsonArrayWriter writer(*array);
    writer.appendFinite(values, points, 0.0, nanPlaces);
    writer.finish();
    return makeChannel(channel - 1, id, facts, array, packageIntegers(nanPlaces));
}

}  // namespace dspwavedecks
