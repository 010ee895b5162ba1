#include "BFTimeSignalStatisticsFilter.h"

#include "MagPhaseFilter.h"

namespace dspwavedecks {

void BFTimeSignalStatisticsFilter::setPropertiesOnSetup(const PropertyList& list) {
    TimeSignalStatisticsFilter::setPropertiesOnSetup(list);
    rangeCalc.setPropertiesOnSetup(list);
    publish({});
}

std::vector<unsigned long> BFTimeSignalStatisticsFilter::getDataRange(const int& signal) {
    return rangeCalc.getDataRange(*this, signal);
}

void BFTimeSignalStatisticsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data != nullptr && signal == measurementSignal_) {
        copyMagPhaseData(MagPhaseFilter::magPhaseData);
        measureCachedSpan(signal, SpanInRecord::Yes);
    }
}

}  // namespace dspwavedecks
