#include "BFAppSimulationMetaDataFilter.h"

#include <cstddef>

namespace dspwavedecks {

BFAppSimulationMetaDataFilter::BFAppSimulationMetaDataFilter() = default;

BFAppSimulationMetaDataFilter::~BFAppSimulationMetaDataFilter() = default;

void BFAppSimulationMetaDataFilter::computeSimMetaDataImpl(const double* data, int signal) {
    const HeadForm frame = readHead(data, signal);
    samplesProcessed_ += frame.samples;
    if (isLastSignal(signal)) {
        framesProcessed_ += frame.frames;
    }
    signalTime[static_cast<std::size_t>(signal)] = frame.lastTime;
}

}  // namespace dspwavedecks
