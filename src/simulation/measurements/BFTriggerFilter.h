#pragma once

#include "BFMeasurementFilterRangeCalc.h"
#include "TriggerFilter.h"

namespace dspwavedecks {

/// The trigger of a block-diagram simulation, also of a replay: the length of its window is that of the simulation's
/// span, and the end of the simulation hands out a window that is not complete.
class BFTriggerFilter : public TriggerFilter {
public:
    bool isActive() override { return active && !suspended; }
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// Takes the options of the span too.
    void setPropertiesOnTune(const PropertyList& list) override;
    double getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) override;
    /// True on a finite stop time, to the last bit, and once a simulation without one has ended.
    bool needToFlushQueue(double lastTime) override;

private:
    BFMeasurementFilterRangeCalc rangeCalc;

    // State.
    bool suspended = false;  ///< the host's affair: nothing here sets it
};

}  // namespace dspwavedecks
