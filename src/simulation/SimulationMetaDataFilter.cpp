#include "SimulationMetaDataFilter.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

#include "BFSimulationPacerFilter.h"
#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"

namespace dspwavedecks {

SimulationMetaDataFilter::SimulationMetaDataFilter()
    : framesEntry(framesProcessed), samplesEntry(samplesProcessed), timeEntry(simTime) {
    registerUsualActions();
}

SimulationMetaDataFilter::~SimulationMetaDataFilter() = default;

void SimulationMetaDataFilter::setPropertiesOnSetup(const PropertyList& list) {
    namespace options = catalogue::base;
    readOptions(list,                                         //
                required<options::clientID>(clientID),        //
                required<options::numChannels>(numChannels),  //
                required<options::frameSize>(frameSize));
    client.remember(clientID);
    const wavedeck::WaveDeckClientInfo& facts = client.get(clientID);
    isComplex = facts.isComplex();
    timeBased = facts.getTimeBased();
    numSignals = static_cast<int>(numChannels.size());
    totalNumChannels = getTotalNumChannels();
    // A reset during a replay does nothing, but the frames that follow must find their places.
    frameSamples.resize(numChannels.size());
    signalTime.resize(numChannels.size());
    setPropertiesImpl(list);
    reset();
}

void SimulationMetaDataFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    auto& settings = getBoard();
    board::addIfAbsent<unsigned long>(settings, framesProcessed);
    board::addIfAbsent<unsigned long>(settings, samplesProcessed);
    board::addIfAbsent<double>(settings, simTime);
}

void SimulationMetaDataFilter::reset() {
    const wavedeck::WaveDeckClientInfo& facts = client.get(clientID);
    if (facts.isDataSourceRepository()) {
        return;
    }
    framesProcessed_ = 0;
    samplesProcessed_ = 0;
    const auto count = static_cast<std::size_t>(numSignals);
    frameSamples.assign(count, 0);
    signalTime.resize(count);
    for (int signal = 0; signal < numSignals; ++signal) {
        signalTime[static_cast<std::size_t>(signal)] = -facts.getSampleTime(signal);
    }
}

unsigned long SimulationMetaDataFilter::getDataChannelCount(int signal) const {
    const int count = std::max(getChannelCount(signal), 0);
    return static_cast<unsigned long>(isComplexSignal(signal) ? count / 2 : count);
}

void SimulationMetaDataFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    if (index >= frameSamples.size()) {
        return;
    }
    frameSamples[index] = isComplexSignal(signal) ? inputLength / 2 : inputLength;
    if (client.get(clientID).isDataSourceRepository()) {
        return;
    }
    computeSimMetaDataImpl(data, signal);
    if (isLastSignal(signal)) {
        publish();
    }
}

void SimulationMetaDataFilter::publish() {
    const auto store = [this](auto& entry, auto value) {
        if (auto* const stored = entry.find(client, clientID)) {
            // Other threads read it: it is written as a whole.
            std::atomic_ref<decltype(value)>(*stored).store(value, std::memory_order_relaxed);
        }
    };
    store(framesEntry, framesProcessed_);
    store(samplesEntry, samplesProcessed_);
    if (!signalTime.empty()) {
        store(timeEntry, *std::max_element(signalTime.begin(), signalTime.end()));
    }
}

void SimulationMetaDataFilter::computeSimMetaDataImpl(const double*, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    if (isLastSignal(signal)) {
        framesProcessed_ += 1;
    }
    samplesProcessed_ += frameSamples[index];
    const unsigned long channels = getDataChannelCount(signal);
    const unsigned long steps = channels == 0 ? 0 : frameSamples[index] / channels;
    signalTime[index] += client.get(clientID).getSampleTime(signal) * static_cast<double>(steps);
}

Poco::SharedPtr<Poco::JSON::Object> SimulationMetaDataFilter::packageImpl(const std::string& clientID) {
    auto& settings = findBoard(clientID);
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set(framesProcessed, board::readShared<unsigned long>(settings, framesProcessed));
    package->set(samplesProcessed, board::readShared<unsigned long>(settings, samplesProcessed));
    package->set(simTime, board::readShared<double>(settings, simTime));
    if (const auto* const rate = board::find<double>(settings, BFSimulationPacerFilter::simDriftRate)) {
        package->set(BFSimulationPacerFilter::simDriftRate, *rate);
    }
    return package;
}

}  // namespace dspwavedecks
