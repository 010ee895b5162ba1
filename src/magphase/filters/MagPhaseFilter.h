#pragma once

#include <memory>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "MagPhase.h"

namespace dspwavedecks {

/// Replaces the channels of marked signals by magnitude and phase in degrees, and publishes the marks and the span
/// settings that the time measurements read. Signals without a mark pass through.
///
/// A complex signal keeps its size; a real one of c channels comes out with c channels of magnitudes and then c of
/// phases, which the client's channelSizeFactors announce.
class MagPhaseFilter : public BaseFilter {
public:
    MagPhaseFilter();
    ~MagPhaseFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// True when any signal is marked.
    bool isActive() override;
    bool isReadOnly() override { return false; }
    bool changesDimensions() override { return true; }
    bool changesChannelSize() override { return true; }
    /// Needs "clientID" and "numChannels" only.
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    inline static const std::string magPhaseData = "magPhaseData";
    inline static const std::string autoSpan = "autoSpan";
    inline static const std::string customSpan = "customSpan";
    inline static const std::string timeRange = "timeRange";

private:
    bool isMarked(int signal) const;
    void publishChannelSizeFactors();

    // Options.
    std::vector<bool> magPhaseSignals;  ///< one mark a signal

    std::unique_ptr<MagPhase> magPhase;
};

}  // namespace dspwavedecks
