#pragma once

#include <memory>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "MagPhase.h"

namespace dspwavedecks {

/// Turns a complex response (a block of frequencies, blocks of real parts, blocks of imaginary parts) into magnitude,
/// in one of three scales, and phase in degrees, wrapped. All signals are taken as complex: what the client calls real
/// arrives with twice its channels, a real and an imaginary part for each.
class MagPhaseResponseFilter : public BaseFilter {
public:
    MagPhaseResponseFilter();
    ~MagPhaseResponseFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return false; }
    bool changesChannelSize() override { return true; }
    /// Needs "clientID", "numSignals" and "numChannels" only.
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// The new channel counts are doubled for real signals as those of the setup were.
    void onInputSizeChange(const PropertyList& list) override;
    /// Needs "clientID", at a tune too.
    void setPropertiesImpl(const PropertyList& list) override;

    inline static const std::string magPhaseData = "magPhaseData";
    inline static const std::string autoSpan = "autoSpan";
    inline static const std::string customSpan = "customSpan";

private:
    /// Scale of the magnitude, numbered as the words of the option.
    enum class MagnitudeDisplay { Magnitude = 0, Decibels = 1, Squared = 2 };

    void doubleRealChannels();
    void scaleMagnitudes(double* magnitudes, std::size_t count) const;

    // Options.
    MagnitudeDisplay magnitudeDisplay = MagnitudeDisplay::Decibels;

    std::unique_ptr<MagPhase> magPhase;
};

}  // namespace dspwavedecks
