#include "SpectrumMeasurementFilter.h"

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"
#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

SpectrumMeasurementFilter::SpectrumMeasurementFilter() {
    registerUsualActions();
}

void SpectrumMeasurementFilter::setPropertiesOnSetup(const PropertyList& list) {
    readHostFacts(list);
    setPropertiesImpl(list);
}

void SpectrumMeasurementFilter::readHostFacts(const PropertyList& list) {
    readOptions(list,                                           //
                required<catalogue::base::clientID>(clientID),  //
                required<catalogue::base::numChannels>(numChannels));
    const auto client = findClient(clientID);
    timeBased = client->getTimeBased();
    isComplex = client->isComplex();
}

unsigned long SpectrumMeasurementFilter::getNumSpectra(int signal) const {
    return countChannels(getChannelCount(signal), isComplexSignal(signal));
}

SpectrumFrameLayout SpectrumMeasurementFilter::getLayout(int signal) const {
    return {inputLength, numFrequencyBlocks, getNumSpectra(signal)};
}

std::optional<double> SpectrumMeasurementFilter::getPublishedRBW() const {
    return SpectrumEstimatorFilter::hasSpectrumEstimatorMetaData(clientID)
               ? std::optional(SpectrumEstimatorFilter::getRBW(clientID))
               : std::nullopt;
}

}  // namespace dspwavedecks
