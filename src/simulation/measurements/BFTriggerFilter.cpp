#include "BFTriggerFilter.h"

#include <cmath>

#include "Board.h"

namespace dspwavedecks {

void BFTriggerFilter::setPropertiesOnSetup(const PropertyList& list) {
    TriggerFilter::setPropertiesOnSetup(list);
    rangeCalc.setPropertiesOnSetup(list);
}

void BFTriggerFilter::setPropertiesOnTune(const PropertyList& list) {
    setPropertiesImpl(list);
    rangeCalc.setPropertiesOnSetup(list);
}

double BFTriggerFilter::getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) {
    return rangeCalc.getTimeRange(*this, signal, settings);
}

bool BFTriggerFilter::needToFlushQueue(double lastTime) {
    const auto client = findClient(clientID);
    const double stopTime = client->getSimStopTime();
    return std::isinf(stopTime) ? client->getSimStatus() == 0 : stopTime == lastTime;
}

}  // namespace dspwavedecks
