#include "TimePeakFinderFilter.h"

#include "Board.h"
#include "DisplayedSpan.h"
#include "MagPhaseFilter.h"
#include "MeasurementsDataCacheFilter.h"

namespace dspwavedecks {

namespace {

/// timeOf  time of the display's axis of a sample of the searched stretch, by its index
template <class TimeOf>
void turnLocationsIntoTimes(peakFinderStruct& peaks, TimeOf timeOf) {
    for (peakFinderStruct::Peak& peak : peaks.peaks) {
        peak.location = timeOf(static_cast<unsigned long>(peak.location));
    }
}

}  // namespace

double TimePeakFinderFilter::getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) {
    return displayedTimeRange(*this, signal, settings, {});
}

std::vector<unsigned long> TimePeakFinderFilter::getDataRange(const int& signal) {
    auto& settings = getBoard();
    return newestRange(MeasurementsDataCacheFilter::findCache(settings), getTimeRange(signal, settings));
}

void TimePeakFinderFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    if (findClient(clientID)->isDataSourceRepository()) {
        searchFrame(data, signal);
    } else {
        searchCachedSpan(signal);
    }
}

void TimePeakFinderFilter::searchFrame(const double* data, int signal) {
    const std::vector<unsigned long> range = BaseFilter::getDataRange(signal);
    if (!isRangeInFrame(range)) {
        publish(peakFinderStruct());
        return;
    }
    const double offset = findClient(clientID)->getOffset(signal);
    located = peakFinder_->findPeaks(data, range, PeakSelectionLastMaximum);
    turnLocationsIntoTimes(located, [&](unsigned long index) { return data[index] + offset; });
    publish(located);
}

void TimePeakFinderFilter::searchCachedSpan(int signal) {
    const std::vector<unsigned long> range = getDataRange(signal);
    if (range[0] >= range[1]) {
        return;
    }
    const MeasurementsDataCache& cache = *MeasurementsDataCacheFilter::findCache(getBoard());
    const double offset = findClient(clientID)->getOffset(signal);
    cache.copyDataInRange(range, span);
    located = peakFinder_->findPeaks(span.data(), {0, span.size()}, PeakSelectionLastMaximum);
    turnLocationsIntoTimes(located, [&](unsigned long index) { return cache.timeAt(range[0] + index) + offset; });
    publish(located);
}

}  // namespace dspwavedecks
