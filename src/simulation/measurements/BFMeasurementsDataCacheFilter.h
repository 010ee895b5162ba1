#pragma once

#include <vector>

#include "MeasurementsDataCacheFilter.h"

namespace dspwavedecks {

/// The cache of a block-diagram simulation, also during a replay. It grows with what comes, up to a limit that it
/// tells, and begins anew with each span of the display.
class BFMeasurementsDataCacheFilter : public MeasurementsDataCacheFilter {
public:
    explicit BFMeasurementsDataCacheFilter(unsigned long maxCapacity = 13107200) : maxCacheCapacity(maxCapacity) {}

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// Empties the cache, whatever the source.
    void setupEvents() override;
    void resetImpl() override;

private:
    void setBuffersCapacityForCachedDataAndTime(MeasurementsDataCache& cache, unsigned long points);
    double spanLength() const;

    // Options.
    bool isBlockInFrameProcMode = false;
    double autoTimeRange = 10.0;     ///< s
    unsigned long maxCacheCapacity;  ///< samples

    // State.
    bool memoryLimitReached = false;  ///< the cache may not grow any more
};

}  // namespace dspwavedecks
