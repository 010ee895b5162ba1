#include "BFSimulationMetaDataFilter.h"

#include <algorithm>
#include <cstddef>

#include "OptionTable.h"
#include "SimulationOptions.h"

namespace dspwavedecks {

namespace {

/// Counters of unsigned type stop at zero.
void takeAway(unsigned long& counter, unsigned long count) {
    counter -= std::min(counter, count);
}

}  // namespace

BFSimulationMetaDataFilter::BFSimulationMetaDataFilter() = default;

BFSimulationMetaDataFilter::~BFSimulationMetaDataFilter() = default;

void BFSimulationMetaDataFilter::setPropertiesImpl(const PropertyList& list) {
    SimulationMetaDataFilter::setPropertiesImpl(list);
    namespace options = catalogue::simulationMetaData;
    readOptions(list,                                                    //
                ifPresent<options::compiledStepSize>(compiledStepSize),  //
                ifPresent<options::useBlockflowSimTime>(useBlockflowSimTime));
}

void BFSimulationMetaDataFilter::reset() {
    if (frameSamples.empty() && numSignals == 0) {
        return;
    }
    framesProcessed_ = 0;
    samplesProcessed_ = 0;
    const auto count = static_cast<std::size_t>(numSignals);
    signalTime.assign(count, 0.0);  // here the time starts at 0 and not one step before
    frameSamples.assign(count, 0);
    framePoints.assign(count, 0);
}

void BFSimulationMetaDataFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    if (index >= std::min(frameSamples.size(), framePoints.size())) {  // a setup that failed midway leaves one longer
        return;
    }
    frameSamples[index] = inputLength;
    const long size = index < frameSize.size() ? frameSize[index] : 0;
    const long divisor = 1 + getChannelCount(signal) * size;
    framePoints[index] = divisor <= 0 ? 0 : inputLength / static_cast<unsigned long>(divisor);
    if (client.get(clientID).isDataSourceRepository()) {
        return;
    }
    computeSimMetaDataImpl(data, signal);
    if (isLastSignal(signal)) {
        publish();
        std::fill(frameSamples.begin(), frameSamples.end(), 0);
    }
}

BFSimulationMetaDataFilter::HeadForm BFSimulationMetaDataFilter::readHead(const double* data, int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    const unsigned long head = framePoints[index];
    const unsigned long samples = frameSamples[index] - head;
    const int size = index < frameSize.size() ? std::max(frameSize[index], 0) : 0;
    const unsigned long frames = size == 0 ? 0 : samples / static_cast<unsigned long>(size);
    const bool hasHead = data != nullptr && head > 0;
    return {head, samples, frames, hasHead ? data[head - 1] : signalTime[index]};
}

void BFSimulationMetaDataFilter::computeSimMetaDataImpl(const double* data, int signal) {
    const double simulationTime = client.get(clientID).getSimulationTime();
    rolledBack = signalTime[static_cast<std::size_t>(signal)] > simulationTime;
    if (timeBased) {
        countTimeBased(data, signal);
    } else {
        countSampleBased(signal, simulationTime);
    }
}

void BFSimulationMetaDataFilter::countTimeBased(const double* data, int signal) {
    const HeadForm frame = readHead(data, signal);
    if (rolledBack && framesProcessed_ != 0) {
        takeAway(samplesProcessed_, frame.samples);
        if (isLastSignal(signal)) {
            takeAway(framesProcessed_, frame.frames);
        }
    } else {
        samplesProcessed_ += frame.samples;
        if (isLastSignal(signal)) {
            framesProcessed_ += frame.frames;
        }
    }
    signalTime[static_cast<std::size_t>(signal)] = frame.lastTime;
}

void BFSimulationMetaDataFilter::countSampleBased(int signal, double simulationTime) {
    const auto index = static_cast<std::size_t>(signal);
    const unsigned long samples = isComplexSignal(signal) ? frameSamples[index] / 2 : frameSamples[index];
    if (rolledBack && framesProcessed_ != 0) {
        takeAway(samplesProcessed_, samples);
        if (isLastSignal(signal)) {
            takeAway(framesProcessed_, 1);
        }
    } else {
        samplesProcessed_ += samples;
        if (isLastSignal(signal)) {
            framesProcessed_ += 1;
        }
    }
    // One step before 0 as long as no frame has been counted: formed in double, so that it does not wrap.
    signalTime[index] =
        useBlockflowSimTime ? simulationTime : compiledStepSize * (static_cast<double>(framesProcessed_) - 1.0);
}

}  // namespace dspwavedecks
