#pragma once

#include "BFSimulationMetaDataFilter.h"

namespace dspwavedecks {

/// The counters for a simulation app: the time is that of the data, and there is no step back.
class BFAppSimulationMetaDataFilter : public BFSimulationMetaDataFilter {
public:
    BFAppSimulationMetaDataFilter();
    ~BFAppSimulationMetaDataFilter() override;

    void computeSimMetaDataImpl(const double* data, int signal) override;
};

}  // namespace dspwavedecks
