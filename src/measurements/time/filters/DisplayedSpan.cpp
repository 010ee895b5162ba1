#include "DisplayedSpan.h"

#include "Board.h"

namespace dspwavedecks {

double displayedTimeRange(BaseFilter& filter, int signal, const wavedeck::WaveDeckClientSettings& settings,
                          const DisplayedSpanRules& rules) {
    const double axesSpan = settings.axesTimeTable[0].timeSpan;
    if (!filter.getForceComputeSpan()) {
        return axesSpan;
    }
    filter.setForceComputeSpan(false);
    if (!filter.getAutoSpan()) {
        return filter.getCustomSpanSeconds();
    }
    const auto client = findClient(filter.getClientID());
    const unsigned long axes = client->getAxesIdFromSignalId(static_cast<unsigned long>(signal));
    const double start = settings.axesTimeTable[axes].startTime;
    const double intervals = static_cast<double>(filter.getNumPointsPerChannel(signal)) - 1.0;
    const double end =
        client->getOffset(rules.offsetOfFirstSignal ? 0 : signal) + client->getSampleTime(signal) * intervals;
    return rules.axesSpanForEmptyFrame && end == start ? axesSpan : end - start;
}

std::vector<unsigned long> newestRange(const MeasurementsDataCache* cache, double timeRange) {
    if (cache == nullptr || cache->size() == 0) {
        return {0, 0};
    }
    const unsigned long size = cache->size();
    const double cutoff = cache->timeAt(size - 1) - timeRange;
    const unsigned long start = cutoff > 0.0 ? cache->firstNotBefore(cutoff) : 0;
    return {start < size ? start : 0, size};
}

}  // namespace dspwavedecks
