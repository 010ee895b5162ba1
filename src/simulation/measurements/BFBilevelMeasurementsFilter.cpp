#include "BFBilevelMeasurementsFilter.h"

#include "Board.h"
#include "MagPhaseFilter.h"

namespace dspwavedecks {

void BFBilevelMeasurementsFilter::setPropertiesOnSetup(const PropertyList& list) {
    BilevelMeasurementsFilter::setPropertiesOnSetup(list);
    rangeCalc.setPropertiesOnSetup(list);
    board::write(getBoard(), bilevelMeasurements, bilevelMeasurementsStruct());
}

std::vector<unsigned long> BFBilevelMeasurementsFilter::getDataRange(const int& signal) {
    return rangeCalc.getDataRange(*this, signal);
}

void BFBilevelMeasurementsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data != nullptr && signal == measurementSignal_) {
        copyMagPhaseData(MagPhaseFilter::magPhaseData);
        measureCachedSpan(signal, EmptySpan::Ignore);
    }
}

}  // namespace dspwavedecks
