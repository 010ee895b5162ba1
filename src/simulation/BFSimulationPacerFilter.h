#pragma once

#include <string>
#include <vector>

#include "BaseFilter.h"
#include "RememberedClient.h"

namespace dspwavedecks {

/// Keeps a running block-diagram simulation from getting ahead of the data that the display has processed: compares
/// the simulation's time t with the data's time d, puts the drift rate (t - d) / d in percent on the board and tells
/// the host to hold or to go on. It sleeps nowhere and measures no wall clock.
///
/// Answers the action "setup" alone: a tune or a size change is dropped.
class BFSimulationPacerFilter : public BaseFilter {
public:
    BFSimulationPacerFilter();
    ~BFSimulationPacerFilter() override;

    /// Once a frame. A frame is judged by the rate of the frame before it: meant so, a rate acts on the next frame.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return enableSimDriftRateThreshold; }
    /// Needs "clientID", "numSignals" and "frameSize".
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    inline static const std::string simDriftRate = "simDriftRate";

private:
    // Options.
    bool enableSimDriftRateThreshold = true;
    double simDriftRateThreshold = 10.0;  ///< percent

    // State.
    RememberedClient client;
    RememberedEntry<double> driftRateEntry;
    RememberedEntry<double> dataTimeEntry;
};

}  // namespace dspwavedecks
