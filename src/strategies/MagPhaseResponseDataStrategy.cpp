#include "MagPhaseResponseDataStrategy.h"

#include <cstddef>
#include <vector>

namespace dspwavedecks {

MagPhaseResponseDataStrategy::MagPhaseResponseDataStrategy() = default;

MagPhaseResponseDataStrategy::~MagPhaseResponseDataStrategy() = default;

FrameDataStrategy::FrameLayout MagPhaseResponseDataStrategy::findLayout(wavedeck::WaveDeckClientInfo& client,
                                                                        int signal, int channels) const {
    const std::vector<int>& isComplex = client.isComplex();
    const auto index = static_cast<std::size_t>(signal);
    const bool isReal = index >= isComplex.size() || isComplex[index] == 0;
    const int inBuffer = isReal ? channels * 2 : channels;
    // An odd count, which a complex signal may have, gives its middle channel to the magnitudes of the limits.
    return {inBuffer, true, (inBuffer + 1) / 2};
}

void MagPhaseResponseDataStrategy::attachMeasurements(ObjectPointer& measurements) const {
    attachPeaks(measurements);
}

}  // namespace dspwavedecks
