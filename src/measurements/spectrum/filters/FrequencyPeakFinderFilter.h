#pragma once

#include <vector>

#include "MeasuredTrace.h"
#include "PeakFinderFilter.h"

namespace dspwavedecks {

/// Peaks of a spectrum or of a hold trace between two frequencies, left on the board with frequencies as locations.
///
/// The bin at 0 Hz, which has no neighbour below, counts as a peak where the search begins with it and it is higher
/// than the next one.
class FrequencyPeakFinderFilter : public PeakFinderFilter {
public:
    bool hostFlagB() override { return false; }
    /// Without a spectrum, or with limits that leave nothing to search, the record is empty and not new.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// Finds the bins of the limits: for each the first whose frequency reaches it. The lower one keeps its earlier
    /// value if no bin does, the upper one is the last bin then.
    /// freq  [spectrum length] Hz, ascending
    void computeFrequencyRange(const double* freq, const int& signal);
    /// Bins from the lower limit up to the upper one, that one not included; empty for what is not there.
    std::vector<unsigned long> getDataRange(const int& signal) override;

private:
    void markZeroFrequency(const double* data, const std::vector<unsigned long>& range);

    // Options.
    std::vector<double> frequencyLimits{0.0, 0.0};  // Hz
    double frequencyOffset = 0.0;                   // Hz, added to every frequency that is told
    unsigned long numFrequencyBlocks = 1;
    MeasuredTrace trace;

    // Derived.
    std::vector<unsigned long> frequencyRange{0, 0};  // bins of the limits, in any trace

    // Scratch.
    peakFinderStruct found;
};

}  // namespace dspwavedecks
