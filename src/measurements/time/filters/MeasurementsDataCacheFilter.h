#pragma once

#include <string>
#include <vector>

#include "BaseFilter.h"
#include "MeasurementsDataCache.h"

namespace dspwavedecks {

/// Keeps the newest samples of the measured channel, with their times, in a cache on the board, from which the time
/// measurements take the displayed span. A replay is not cached: its frame holds its own history.
///
/// At most the newest 5000 samples are held. BFMeasurementsDataCacheFilter has a cache that grows.
class MeasurementsDataCacheFilter : public BaseFilter {
public:
    MeasurementsDataCacheFilter();
    ~MeasurementsDataCacheFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    /// Needs "clientID", "numChannels" and "numSignals"; empties the cache of a live source.
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setupEvents() override;
    /// Follows a simulation that steps back to "rollbacktime".
    void onRollback(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// Empties the cache.
    void reset();

    /// Whether the client's cache holds all that it may.
    static bool isDataCacheMemoryLimitReached(const std::string& clientID);

    /// The cache on a board; null before the setup.
    static MeasurementsDataCache* findCache(wavedeck::WaveDeckClientSettings& settings);

    inline static const std::string measurementsDataCache = "measurementsDataCache";

protected:
    // Derived.
    double simStartTime = 0.0;  ///< s, start of the simulation at the setup
};

}  // namespace dspwavedecks
