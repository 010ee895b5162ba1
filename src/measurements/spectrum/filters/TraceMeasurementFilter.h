#pragma once

#include <vector>

#include "MeasuredTrace.h"
#include "SpectrumMeasurementFilter.h"

namespace dspwavedecks {

/// Common base of the measurements that are computed from one whole trace: the spectrum of the measured channel in the
/// frame, or its hold trace.
class TraceMeasurementFilter : public SpectrumMeasurementFilter {
public:
    /// The last points of the measured channel's block, as many as a spectrum has; empty if the frame has no such
    /// channel, or no room for the spectrum.
    std::vector<unsigned long> getDataRange(const int& signal) override;

protected:
    /// A spectrum and its grid; an empty range stands for one that is not there.
    struct MeasuredSpectrum {
        const double* frequencies;  ///< [range[1] - range[0]] Hz
        const double* bins;         ///< the frame or trace of which the range is the spectrum
        std::vector<unsigned long> range;
    };
    MeasuredSpectrum findMeasuredSpectrum(const double* data, int signal);

    // Options.
    MeasuredTrace trace;
};

}  // namespace dspwavedecks
