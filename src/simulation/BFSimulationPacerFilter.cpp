#include "BFSimulationPacerFilter.h"

#include <atomic>

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"
#include "SimulationMetaDataFilter.h"
#include "SimulationOptions.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace dspwavedecks {

BFSimulationPacerFilter::BFSimulationPacerFilter()
    : driftRateEntry(simDriftRate), dataTimeEntry(SimulationMetaDataFilter::simTime) {
    // The base's own registration by hand: this filter answers nothing but the setup.
    registerAction("setup", &BaseFilter::setPropertiesOnSetup);
}

BFSimulationPacerFilter::~BFSimulationPacerFilter() = default;

void BFSimulationPacerFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                               //
                required<catalogue::base::clientID>(clientID),      //
                required<catalogue::base::numSignals>(numSignals),  //
                required<catalogue::base::frameSize>(frameSize));
    client.remember(clientID);
    setPropertiesImpl(list);
}

void BFSimulationPacerFilter::setPropertiesImpl(const PropertyList& list) {
    namespace options = catalogue::simulationPacer;
    readOptions(list,  //
                ifPresent<options::enableSimDriftRateThreshold>(enableSimDriftRateThreshold),
                ifPresent<options::simDriftRateThreshold>(simDriftRateThreshold));
    getBoard().addCustomSetting(simDriftRate, 0.0);  // each setup begins at 0
}

void BFSimulationPacerFilter::filterImpl(const double*, std::vector<double>&, int signal) {
    if (!isLastSignal(signal) || !wavedeck::WaveDeckClientRegistry::sInstance.isClientValid(clientID)) {
        return;
    }
    double* const storedRate = driftRateEntry.find(client, clientID);
    if (storedRate == nullptr) {
        return;
    }
    wavedeck::WaveDeckClientInfo& facts = client.get(clientID);
    double* const storedTime = dataTimeEntry.find(client, clientID);
    // The time is read by other threads too: its writer stores it as a whole.
    const double dataTime =
        storedTime == nullptr ? 0.0 : std::atomic_ref<double>(*storedTime).load(std::memory_order_relaxed);
    const double rate = dataTime != 0.0 ? (facts.getSimulationTime() - dataTime) / dataTime * 100.0 : 0.0;
    const double previousRate = *storedRate;
    facts.setContinueProcessing(!(previousRate > simDriftRateThreshold));  // goes on with a NaN, too
    *storedRate = rate;
}

}  // namespace dspwavedecks
