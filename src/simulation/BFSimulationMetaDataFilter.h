#pragma once

#include <vector>

#include "SimulationMetaDataFilter.h"

namespace dspwavedecks {

/// The counters for the block-diagram simulator, which takes its time from the simulation and may step back. A signal
/// buffer is a head of one time for each simulation frame in hand, and then the data: for each channel frameSize
/// points of each of these frames. A step back is seen where a signal's time is ahead of the simulation's.
class BFSimulationMetaDataFilter : public SimulationMetaDataFilter {
public:
    BFSimulationMetaDataFilter();
    ~BFSimulationMetaDataFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesImpl(const PropertyList& list) override;
    void computeSimMetaDataImpl(const double* data, int signal) override;
    /// Counters and times to zero, also during a replay.
    void reset() override;

protected:
    /// Head and data of one signal's buffer.
    struct HeadForm {
        unsigned long head;     ///< values in the head
        unsigned long samples;  ///< values behind the head
        unsigned long frames;   ///< samples / frameSize
        double lastTime;        ///< last value of the head; the signal's time so far if there is none
    };
    HeadForm readHead(const double* data, int signal) const;

    // Options.
    double compiledStepSize = 0.0;     ///< base step of the simulation, seconds
    bool useBlockflowSimTime = false;  ///< take the time from the simulation

    // State.
    std::vector<unsigned long> framePoints;  ///< per signal, values in the head of the frame in hand
    bool rolledBack = false;                 ///< the signal's time was ahead of the simulation's

private:
    void countTimeBased(const double* data, int signal);
    void countSampleBased(int signal, double simulationTime);
};

}  // namespace dspwavedecks
