#include "BFMeasurementsDataCacheFilter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "OptionTable.h"
#include "TimeMeasurementOptions.h"
#include "TruncateTo.h"

namespace dspwavedecks {

void BFMeasurementsDataCacheFilter::setPropertiesOnSetup(const PropertyList& list) {
    MeasurementsDataCacheFilter::setPropertiesOnSetup(list);
    namespace names = catalogue::blockflowRange;
    readOptions(list,  //
                ifPresent<names::isBlockInFrameProcMode>(isBlockInFrameProcMode),
                ifPresent<catalogue::base::autoSpanAtSetup>(autoSpan_), ifPresent<names::autoTimeRange>(autoTimeRange));
}

void BFMeasurementsDataCacheFilter::setupEvents() {
    reset();
}

void BFMeasurementsDataCacheFilter::resetImpl() {
    reset();
}

double BFMeasurementsDataCacheFilter::spanLength() const {
    return autoSpan_ && !isBlockInFrameProcMode ? autoTimeRange : getBoard().axesTimeTable[0].timeSpan;
}

void BFMeasurementsDataCacheFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    MeasurementsDataCache* const cache = findCache(getBoard());
    const unsigned long points = getNumPointsPerChannel(signal);
    if (cache == nullptr || points == 0 || !isRangeInFrame(BaseFilter::getDataRange(signal))) {
        return;
    }
    const double span = spanLength();
    const double spanEnd = span * std::ceil(data[0] / span);
    if (spanEnd != 0.0 && data[points - 1] > spanEnd + std::numeric_limits<double>::epsilon()) {
        reset();  // the frame runs into the next span
    }
    cache->memoryLimitReached = false;
    if (cache->size() + points > cache->capacity) {
        setBuffersCapacityForCachedDataAndTime(*cache, points);
    }
    cache->addData(data, static_cast<unsigned long>(measurementChannel_), points);
    updateFilterSignalAndChannel();
}

void BFMeasurementsDataCacheFilter::setBuffersCapacityForCachedDataAndTime(MeasurementsDataCache& cache,
                                                                           unsigned long points) {
    if (memoryLimitReached) {
        cache.memoryLimitReached = true;
        return;
    }
    constexpr double growth = 1.025;
    const unsigned long former = cache.capacity;
    cache.capacity = std::max(truncateTo<unsigned long>(static_cast<double>(former) * growth), cache.size() + points);
    if (cache.capacity > maxCacheCapacity) {
        memoryLimitReached = true;
        cache.memoryLimitReached = true;
        cache.capacity = maxCacheCapacity;
    }
    try {
        cache.setCapacity(cache.capacity);
    } catch (const std::bad_alloc&) {
        cache.capacity = former;
        cache.setCapacity(former);
    }
}

}  // namespace dspwavedecks
