#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "MeasuredTrace.h"

namespace dspwavedecks {

/// Common base of the measurements on spectra that are computed from a whole trace: what a setup reads, where the
/// spectrum lies in the frame, and which trace is measured.
class SpectrumMeasurementFilter : public BaseFilter {
public:
    bool hostFlagB() override { return false; }

    /// Action "setup": the client and its channel counts, required, and the facts that the host knows of the client.
    /// Frame sizes play no part.
    void setPropertiesOnSetup(const PropertyList& list) override;

    /// The last points of the measured channel's block, as many as a spectrum has.
    std::vector<unsigned long> getDataRange(const int& signal) override;

protected:
    SpectrumMeasurementFilter();

    /// What setups of all these filters read, without the options that may change later.
    void readHostFacts(const PropertyList& list);
    /// Channels of a signal, complex ones counted once.
    unsigned long getNumSpectra(int signal) const;
    SpectrumFrameLayout getLayout(int signal) const;
    /// Resolution bandwidth of the estimator's last update, Hz; nothing for a client without an estimator.
    std::optional<double> getPublishedRBW() const;

    /// A spectrum and its grid; an empty range stands for one that is not there.
    struct MeasuredSpectrum {
        const double* frequencies;  ///< [range[1] - range[0]] Hz
        const double* bins;         ///< the frame or trace of which the range is the spectrum
        std::vector<unsigned long> range;
    };
    /// The spectrum of the measured channel in the frame in hand, or its hold trace.
    MeasuredSpectrum findMeasuredSpectrum(const double* data, int signal);

    // Options.
    unsigned long numFrequencyBlocks = 1;  ///< blocks at the head of a frame that are no channels
    MeasuredTrace trace;
};

}  // namespace dspwavedecks
