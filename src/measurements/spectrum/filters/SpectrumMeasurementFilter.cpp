#include "SpectrumMeasurementFilter.h"

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"
#include "PublishedSpectrum.h"

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
    const unsigned long length = publishedSpectrum::length(getBoard());
    const SpectrumFrameLayout layout = getLayout(signal);
    if (!layout.holdsSpectrum(measurementChannel_, length)) {
        return {0, 0};
    }
    const unsigned long end = layout.endOf(measurementChannel_);
    return {end - length, end};
}

SpectrumMeasurementFilter::MeasuredSpectrum SpectrumMeasurementFilter::findMeasuredSpectrum(const double* data,
                                                                                            int signal) {
    if (trace.isNormal()) {
        return {data, data, getDataRange(signal)};
    }
    const auto& settings = getBoard();
    const unsigned long length = publishedSpectrum::length(settings);
    const auto* const record = publishedSpectrum::record(settings);
    if (record == nullptr || record->frequencyVector.size() < length) {
        return {data, data, {0, 0}};
    }
    const std::vector<double>& hold = trace.selectHold(*record);
    return {record->frequencyVector.data(), hold.data(), MeasuredTrace::rangeInHold(hold, measurementChannel_, length)};
}

}  // namespace dspwavedecks
