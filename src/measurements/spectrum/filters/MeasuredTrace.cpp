#include "MeasuredTrace.h"

#include "OptionTable.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

void MeasuredTrace::readOptions(const PropertyList& list) {
    namespace options = catalogue::spectrumMeasurement;
    dspwavedecks::readOptions(list,                                                  //
                              ifPresent<options::normalTraceData>(normalTraceData),  //
                              ifPresent<options::maxHoldTraceData>(maxHoldTraceData),
                              ifPresent<options::minHoldTraceData>(minHoldTraceData));
}

std::vector<unsigned long> MeasuredTrace::rangeInHold(const std::vector<double>& hold, long channel,
                                                      unsigned long length) {
    if (channel < 0 || length == 0 || static_cast<unsigned long>(channel) >= hold.size() / length) {
        return {0, 0};
    }
    const unsigned long first = static_cast<unsigned long>(channel) * length;
    return {first, first + length};
}

}  // namespace dspwavedecks
