#pragma once

#include <vector>

#include "BFMeasurementFilterRangeCalc.h"
#include "TimeSignalStatisticsFilter.h"

namespace dspwavedecks {

/// Statistics over a span of simulation time, also of a replay. The record tells the start and the end of the span.
class BFTimeSignalStatisticsFilter : public TimeSignalStatisticsFilter {
public:
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// Clears the record too, so that a new run shows no stale figures.
    void setPropertiesOnSetup(const PropertyList& list) override;
    std::vector<unsigned long> getDataRange(const int& signal) override;

private:
    BFMeasurementFilterRangeCalc rangeCalc;
};

}  // namespace dspwavedecks
