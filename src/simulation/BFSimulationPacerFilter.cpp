#include "BFSimulationPacerFilter.h"

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"
#include "SimulationMetaDataFilter.h"
#include "SimulationOptions.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace dspwavedecks {

BFSimulationPacerFilter::BFSimulationPacerFilter() {
    // The base's own registration by hand: this filter answers nothing but the setup.
    registerAction("setup", &BaseFilter::setPropertiesOnSetup);
}

BFSimulationPacerFilter::~BFSimulationPacerFilter() = default;

void BFSimulationPacerFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                               //
                required<catalogue::base::clientID>(clientID),      //
                required<catalogue::base::numSignals>(numSignals),  //
                required<catalogue::base::frameSize>(frameSize));
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
    if (!wavedeck::WaveDeckClientRegistry::sInstance.isClientValid(clientID)) {
        return;
    }
    const auto client = findClient(clientID);
    auto& settings = client->getClientSettings();
    double* const storedRate = board::find<double>(settings, simDriftRate);
    if (storedRate == nullptr || !isLastSignal(signal)) {
        return;
    }
    const double dataTime = board::readShared<double>(settings, SimulationMetaDataFilter::simTime);
    const double rate = dataTime != 0.0 ? (client->getSimulationTime() - dataTime) / dataTime * 100.0 : 0.0;
    const double previousRate = *storedRate;
    client->setContinueProcessing(!(previousRate > simDriftRateThreshold));  // goes on with a NaN, too
    *storedRate = rate;
}

}  // namespace dspwavedecks
