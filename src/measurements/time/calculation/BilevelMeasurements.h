#pragma once

#include <cstddef>
#include <vector>

#include "BilevelWorkingSet.h"
#include "bilevelMeasurementsStruct.h"

namespace dspwavedecks {

/// Measures a two-level (pulse) waveform over one span: the two state levels, all transitions between them, and from
/// these rise and fall times, slew rates, aberrations around the transitions, and period, pulse widths and duty cycles.
///
/// Every call measures the whole span anew; only the settings and the last automatic state levels carry over. What
/// cannot be measured reads NaN, also where a zero amplitude or time would be divided by.
class BilevelMeasurements {
public:
    void setAutoStateLevel(const bool& automatic) { autoStateLevel = automatic; }
    void setComputeTransitions(const bool& compute) { computeTransitions = compute; }
    void setComputeAberrations(const bool& compute) { computeAberrations = compute; }
    void setComputeCycles(const bool& compute) { computeCycles = compute; }
    void setHighStateLevel(const double& level) { highStateLevel = level; }
    void setLowStateLevel(const double& level) { lowStateLevel = level; }
    void setStateLevelTolerance(const double& percent) { stateLevelTolerance = percent; }
    void setUpperReferenceLevel(const double& percent) { upperReferenceLevel = percent; }
    void setMidReferenceLevel(const double& percent) { midReferenceLevel = percent; }
    void setLowerReferenceLevel(const double& percent) { lowerReferenceLevel = percent; }
    void setSettleSeek(const double& seconds) { settleSeek = seconds; }

    /// Sets all figures to NaN.
    void reset() { metrics = {}; }

    /// Measures one span laid out as a frame of one channel.
    /// data   times of the span first, data[0 .. count) in s with count = range[1] - range[0]
    /// range  data[range[0] .. range[1]) are the samples
    /// Returns the address of the figures, which stay as they were if the range is empty.
    /// O(count); allocates a list of the transitions of a few thousand samples, and from one on whose mid crossing lies
    /// outside the span a list of all.
    const bilevelMeasurementsStruct* computeBilevelMetrics(const double* data, const std::vector<unsigned long>& range);

private:
    void computeStateLevels(const BilevelSpan& span);
    BilevelLevels referenceLevels() const;
    /// Measures transitions, aberrations and cycles in one pass over the span. Returns false, with no figure set, if
    /// `timesRise` and a time falls or is NaN.
    bool measureTransitions(const BilevelSpan& span, const BilevelLevels& levels, bool timesRise);

    // Options.
    bool autoStateLevel = true;
    bool computeTransitions = false;
    bool computeAberrations = false;
    bool computeCycles = false;

    // State: the levels found last.
    double autoHighStateLevel = 0.0;
    double autoLowStateLevel = 0.0;

    // Options: levels in the signal's unit, the rest in percent of the amplitude and seconds.
    double highStateLevel = 2.3;
    double lowStateLevel = 0.0;
    double stateLevelTolerance = 2.0;
    double upperReferenceLevel = 90.0;
    double midReferenceLevel = 50.0;
    double lowerReferenceLevel = 10.0;
    double settleSeek = 0.02;

    // State: the figures of the last call.
    bilevelMeasurementsStruct metrics;
};

}  // namespace dspwavedecks
