#include "TraceMeasurementFilter.h"

#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

std::vector<unsigned long> TraceMeasurementFilter::getDataRange(const int& signal) {
    const unsigned long length = SpectrumEstimatorFilter::getSpectrumLength(clientID);
    const SpectrumFrameLayout layout = getLayout(signal);
    if (!layout.holdsSpectrum(measurementChannel_, length)) {
        return {0, 0};
    }
    const unsigned long end = layout.endOf(measurementChannel_);
    return {end - length, end};
}

TraceMeasurementFilter::MeasuredSpectrum TraceMeasurementFilter::findMeasuredSpectrum(const double* data, int signal) {
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
