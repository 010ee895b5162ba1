#pragma once

#include <vector>

#include "BaseFilter.h"

namespace dspwavedecks {

/// Which part of the cached samples of a block-diagram simulation the display's span covers, while simulation time
/// jumps, restarts and runs against frame periods. Held by the filters that measure such a span; no filter itself.
///
/// The options are kept at the first setup as a snapshot, to which a fast restart goes back.
class BFMeasurementFilterRangeCalc {
public:
    /// Reads the options that are present. The first list makes the snapshot; a later one needs "clientID" and drops
    /// the snapshot, unless the client replays, its axes are driven from elsewhere, or a fast restart is or was active.
    void setPropertiesOnSetup(const PropertyList& list);

    /// First index and one past the last into the client's cache. {0, 0} while there is nothing but the simulation's
    /// start, and for a span of 0.
    std::vector<unsigned long> getDataRange(BaseFilter& filter, const int& signal);

    /// Length of the span in seconds: that of the first axes, or the automatic one, or, when the filter asks for it,
    /// one measured anew.
    double getTimeRange(BaseFilter& filter, const int& signal, const wavedeck::WaveDeckClientSettings& settings) const;

    /// Start of the span in seconds; that of the first axes when the span must not move and need not be computed.
    /// A fast restart takes the options back to the snapshot.
    double getSimStartTime(BaseFilter& filter, const wavedeck::WaveDeckClientSettings& settings, bool inhibit);

private:
    struct Options {
        bool isBlockInFrameProcMode = false;
        bool timeSpanIsOneFramePeriod = false;
        double startTime = 0.0;       ///< s
        double autoTimeRange = 10.0;  ///< s
    };

    Options options;

    // State.
    Options saved;
    bool hasSnapshot = false;
};

}  // namespace dspwavedecks
