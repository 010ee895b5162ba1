#include "BFMeasurementFilterRangeCalc.h"

#include <cmath>
#include <limits>
#include <string>

#include "Board.h"
#include "MeasurementsDataCacheFilter.h"
#include "OptionTable.h"
#include "TimeMeasurementOptions.h"

namespace dspwavedecks {

namespace {

/// Times are compared to within this, seconds, however large they are: meant so.
constexpr double tolerance = std::numeric_limits<double>::epsilon();

bool isDrivenFromElsewhere(const wavedeck::WaveDeckClientSettings& settings) {
    return settings.axesTimeTable[0].axesFlag != 0;
}

/// Start of the stretch of the span's length in which the newest sample lies; without whole stretches the span that
/// ends with that sample.
double movedStart(double newest, double span, bool oneFramePeriod) {
    if (std::fabs(std::fmod(newest, span)) > tolerance && !oneFramePeriod) {
        const double stretches = std::floor(newest / span);
        const bool isAtBegin = std::fabs(span * stretches - newest) < tolerance;
        return isAtBegin ? span * (stretches - 1.0) : span * stretches;
    }
    return newest - span;
}

}  // namespace

void BFMeasurementFilterRangeCalc::setPropertiesOnSetup(const PropertyList& list) {
    namespace names = catalogue::blockflowRange;
    readOptions(list,  //
                ifPresent<names::isBlockInFrameProcMode>(options.isBlockInFrameProcMode),
                ifPresent<names::startTime>(options.startTime),
                ifPresent<names::timeSpanIsOneFramePeriod>(options.timeSpanIsOneFramePeriod),
                ifPresent<names::autoTimeRange>(options.autoTimeRange));
    if (!hasSnapshot) {
        saved = options;
        hasSnapshot = true;
        return;
    }
    std::string clientID;
    readOptions(list, required<catalogue::base::clientID>(clientID));
    const auto client = findClient(clientID);
    if (!client->isDataSourceRepository() && !isDrivenFromElsewhere(client->getClientSettings()) &&
        !client->isOrWasFastRestartActive()) {
        hasSnapshot = false;
        saved = Options();
    }
}

double BFMeasurementFilterRangeCalc::getSimStartTime(BaseFilter& filter,
                                                     const wavedeck::WaveDeckClientSettings& settings, bool inhibit) {
    if (!filter.getForceComputeSpan() && inhibit) {
        return settings.axesTimeTable[0].startTime;
    }
    if (hasSnapshot && !inhibit && findClient(filter.getClientID())->isOrWasFastRestartActive()) {
        options.isBlockInFrameProcMode = saved.isBlockInFrameProcMode;
        options.timeSpanIsOneFramePeriod = saved.timeSpanIsOneFramePeriod;
        options.autoTimeRange = saved.autoTimeRange;
        return saved.startTime;
    }
    return options.startTime;
}

double BFMeasurementFilterRangeCalc::getTimeRange(BaseFilter& filter, const int& signal,
                                                  const wavedeck::WaveDeckClientSettings& settings) const {
    if (!filter.getForceComputeSpan()) {
        const bool isAutomatic = filter.getAutoSpan() && !options.isBlockInFrameProcMode;
        return isAutomatic ? options.autoTimeRange : settings.axesTimeTable[0].timeSpan;
    }
    if (!filter.getAutoSpan()) {
        return filter.getCustomSpanSeconds();
    }
    const auto client = findClient(filter.getClientID());
    const double sampleTime = client->getSampleTime(signal);
    double end = options.isBlockInFrameProcMode ? client->getSimulationTime() : options.autoTimeRange;
    if (sampleTime > 0.0) {
        const double intervals = static_cast<double>(filter.getNumPointsPerChannel(signal)) - 1.0;
        end = client->getOffset(signal) + sampleTime * intervals;
    }
    return end - settings.axesTimeTable[client->getAxesIdFromSignalId(static_cast<unsigned long>(signal))].startTime;
}

std::vector<unsigned long> BFMeasurementFilterRangeCalc::getDataRange(BaseFilter& filter, const int& signal) {
    const auto client = findClient(filter.getClientID());
    auto& settings = client->getClientSettings();
    const MeasurementsDataCache* const cache = MeasurementsDataCacheFilter::findCache(settings);
    if (cache == nullptr || cache->size() == 0) {
        return {0, 0};
    }
    const double span = getTimeRange(filter, signal, settings);
    const bool isReplay = client->isDataSourceRepository();
    const bool isDriven = isDrivenFromElsewhere(settings);
    const double start = getSimStartTime(filter, settings, isReplay || isDriven);
    const double newest = cache->timeAt(cache->size() - 1);
    const double simStart = client->getSimStartTime();
    if (std::fabs(newest - simStart) <= tolerance) {
        return {0, 0};
    }

    if (span == 0.0) {
        filter.setForceComputeSpan(false);
        return {0, 0};
    }

    // Where the span has moved away from its start, its ends are moved along.
    double shift = 0.0;
    const bool hasMoved = std::fabs(simStart - start) >= tolerance || std::fabs(newest - (span + start)) >= tolerance;
    if (!isDriven && (hasMoved || isReplay)) {
        const bool oneFramePeriod = client->isTimeSpanOneFramePeriod();
        shift = movedStart(newest, span, oneFramePeriod);
        if (oneFramePeriod && !filter.getAutoSpan()) {
            shift -= simStart;
        }
    }
    const double top = span + start + shift;
    const double bottom = start + shift;

    const unsigned long count = cache->size();
    unsigned long end = count;
    if (newest > top - tolerance) {
        const unsigned long found = cache->endNotAfter(top);
        end = found != 0 ? found : count;
    }
    unsigned long begin = 0;
    if (simStart < bottom + tolerance) {
        const unsigned long found = cache->firstNotBefore(bottom);
        begin = found != count ? found : 0;
    }
    filter.setForceComputeSpan(false);
    return {begin, end >= begin ? end : begin};
}

}  // namespace dspwavedecks
