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

std::vector<unsigned long> SpectrumMeasurementFilter::getDataRange(const int& signal) {
    const unsigned long length = SpectrumEstimatorFilter::getSpectrumLength(clientID);
    const SpectrumFrameLayout layout = getLayout(signal);
    if (!layout.holdsSpectrum(measurementChannel_, length)) {
        return {0, 0};
    }
    const unsigned long end = layout.endOf(measurementChannel_);
    return {end - length, end};
}

std::optional<double> SpectrumMeasurementFilter::getPublishedRBW() const {
    return SpectrumEstimatorFilter::hasSpectrumEstimatorMetaData(clientID)
               ? std::optional(SpectrumEstimatorFilter::getRBW(clientID))
               : std::nullopt;
}

SpectrumMeasurementFilter::MeasuredSpectrum SpectrumMeasurementFilter::findMeasuredSpectrum(const double* data,
                                                                                            int signal) {
    if (trace.isNormal()) {
        return {data, data, getDataRange(signal)};
    }
    const unsigned long length = SpectrumEstimatorFilter::getSpectrumLength(clientID);
    const auto* const record = SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(clientID);
    if (record == nullptr || record->frequencyVector.size() < length) {
        return {data, data, {0, 0}};
    }
    const std::vector<double>& hold = trace.selectHold(*record);
    return {record->frequencyVector.data(), hold.data(), MeasuredTrace::rangeInHold(hold, measurementChannel_, length)};
}

}  // namespace dspwavedecks
