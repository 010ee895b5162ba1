#pragma once

#include <vector>

#include "BaseFilter.h"

namespace dspwavedecks {

/// Lays spectra out in slots of a simulation's frame size, for the message of a simulation's spectra.
///
/// Input: a block of frequencies and one a channel, each of B spectra of S points, one behind the other.
/// Output, for a frame size f: a header of n slots, then for each channel its B * S points and zeros up to n * f. Where
/// a spectrum is at least as long as a slot, n = B * ceil(S / f), else n = ceil(B * S / f). The header is zero but for
/// B at the slot n - ceil(n / B).
class BFSpectrumDataAggregatorFilter : public BaseFilter {
public:
    BFSpectrumDataAggregatorFilter();
    ~BFSpectrumDataAggregatorFilter() override;

    void preProcessImpl() override { isDataReady = false; }
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return false; }
    bool changesChannelSize() override { return true; }
    /// Whether this frame has led to an output.
    bool hostFlagB() override { return isDataReady; }

private:
    // State.
    bool isDataReady = false;
};

}  // namespace dspwavedecks
