#pragma once

#include <vector>

#include "BFMeasurementFilterRangeCalc.h"
#include "TimePeakFinderFilter.h"

namespace dspwavedecks {

/// Peaks in a span of simulation time, also of a replay.
class BFTimePeakFinderFilter : public TimePeakFinderFilter {
public:
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// Clears the record too, so that a new run shows no stale peaks.
    void setPropertiesOnSetup(const PropertyList& list) override;
    std::vector<unsigned long> getDataRange(const int& signal) override;

private:
    BFMeasurementFilterRangeCalc rangeCalc;
};

}  // namespace dspwavedecks
