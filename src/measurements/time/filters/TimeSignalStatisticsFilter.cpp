#include "TimeSignalStatisticsFilter.h"

#include <limits>

#include "Board.h"
#include "DisplayedSpan.h"
#include "MagPhaseFilter.h"
#include "MeasurementsDataCacheFilter.h"

namespace dspwavedecks {

namespace {

/// Turns the positions of the extremes into times. One that was not computed holds a position of an earlier span, or
/// none: it becomes NaN.
/// timeOf  time of the display's axis of a sample of the span, by its index
template <class TimeOf>
void turnPositionsIntoTimes(signalStatsStruct& stats, const SignalStatistics& statistics, TimeOf timeOf) {
    constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
    stats.xMin = statistics.computesMin() ? timeOf(static_cast<unsigned long>(stats.xMin)) : unknown;
    stats.xMax = statistics.computesMax() ? timeOf(static_cast<unsigned long>(stats.xMax)) : unknown;
}

}  // namespace

double TimeSignalStatisticsFilter::getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) {
    return displayedTimeRange(*this, signal, settings, {});
}

std::vector<unsigned long> TimeSignalStatisticsFilter::getDataRange(const int& signal) {
    auto& settings = getBoard();
    return newestRange(MeasurementsDataCacheFilter::findCache(settings), getTimeRange(signal, settings));
}

void TimeSignalStatisticsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    if (findClient(clientID)->isDataSourceRepository()) {
        measureFrame(data, signal);
    } else {
        measureCachedSpan(signal, SpanInRecord::No);
    }
}

void TimeSignalStatisticsFilter::measureFrame(const double* data, int signal) {
    const std::vector<unsigned long> range = BaseFilter::getDataRange(signal);
    if (!isRangeInFrame(range)) {
        publish(unmeasurable());
        return;
    }
    if (range[0] == range[1]) {
        return;
    }
    const double offset = findClient(clientID)->getOffset(signal);
    signalStatsStruct stats = statistics->computeSignalStatistics(data, range, MinMaxLastMaximum);
    turnPositionsIntoTimes(stats, *statistics, [&](unsigned long index) { return data[index] + offset; });
    publish(stats);
}

void TimeSignalStatisticsFilter::measureCachedSpan(int signal, SpanInRecord spanInRecord) {
    const std::vector<unsigned long> range = getDataRange(signal);
    if (range[0] >= range[1]) {
        return;
    }
    const MeasurementsDataCache& cache = *MeasurementsDataCacheFilter::findCache(getBoard());
    const double offset = findClient(clientID)->getOffset(signal);
    cache.copyDataInRange(range, span);
    signalStatsStruct stats = statistics->computeSignalStatistics(span.data(), {0, span.size()}, MinMaxLastMaximum);
    turnPositionsIntoTimes(stats, *statistics,
                           [&](unsigned long index) { return cache.timeAt(range[0] + index) + offset; });
    if (spanInRecord == SpanInRecord::Yes) {
        stats.timeRange = {cache.timeAt(range[0]) + offset, cache.timeAt(range[1] - 1) + offset};
    }
    publish(stats);
}

}  // namespace dspwavedecks
