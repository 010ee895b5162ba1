#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "MeasuredTrace.h"

namespace dspwavedecks {

/// Common base of the measurements on spectra: what a setup reads, how spectra lie in a frame, and what the estimator
/// has told of them.
class SpectrumMeasurementFilter : public BaseFilter {
public:
    bool hostFlagB() override { return false; }

    /// Action "setup": the client and its channel counts, required, and the facts that the host knows of the client.
    /// Frame sizes play no part.
    void setPropertiesOnSetup(const PropertyList& list) override;

protected:
    SpectrumMeasurementFilter();

    /// What setups of all these filters read, without the options that may change later.
    void readHostFacts(const PropertyList& list);
    /// Channels of a signal, complex ones counted once.
    unsigned long getNumSpectra(int signal) const;
    SpectrumFrameLayout getLayout(int signal) const;
    /// Resolution bandwidth of the estimator's last update, Hz; nothing for a client without an estimator.
    std::optional<double> getPublishedRBW() const;

    // Options.
    unsigned long numFrequencyBlocks = 1;  ///< blocks at the head of a frame that are no channels
};

}  // namespace dspwavedecks
