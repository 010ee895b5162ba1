#pragma once

#include <memory>
#include <vector>

#include "BaseFilter.h"
#include "DigitalFilterFrequencyResponse.h"

namespace dspwavedecks {

/// Takes each frame as the coefficients of an FIR filter and puts out the filter's complex frequency response: a block
/// of frequencies, a block of real parts, a block of imaginary parts.
///
/// The frame has no leading block: its first channel holds the coefficients in ascending powers of the delay. Only a
/// client of a single signal has a response; any other frame, and one without coefficients, leaves `out` as it came.
class DigitalFilterFrequencyResponseFilter : public BaseFilter {
public:
    DigitalFilterFrequencyResponseFilter();
    ~DigitalFilterFrequencyResponseFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return false; }
    bool changesChannelSize() override { return true; }
    /// Needs "clientID", "numSignals" and "numChannels" only.
    void setPropertiesOnSetup(const PropertyList& list) override;

private:
    std::unique_ptr<DigitalFilterFrequencyResponse> response;

    // Scratch: one list a signal, of which there is one.
    std::vector<std::vector<double>> numerators{{}};
    std::vector<std::vector<double>> denominators{{1.0}};
};

}  // namespace dspwavedecks
