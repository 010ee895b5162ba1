#include "BFTimePeakFinderFilter.h"

#include "Board.h"
#include "MagPhaseFilter.h"

namespace dspwavedecks {

void BFTimePeakFinderFilter::setPropertiesOnSetup(const PropertyList& list) {
    TimePeakFinderFilter::setPropertiesOnSetup(list);
    rangeCalc.setPropertiesOnSetup(list);
    if (auto* const record = board::find<peakFinderStruct>(getBoard(), peakFinder)) {
        record->peaks.clear();
        record->numPeaks = 0;
    }
}

std::vector<unsigned long> BFTimePeakFinderFilter::getDataRange(const int& signal) {
    return rangeCalc.getDataRange(*this, signal);
}

void BFTimePeakFinderFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data != nullptr && signal == measurementSignal_) {
        copyMagPhaseData(MagPhaseFilter::magPhaseData);
        searchCachedSpan(signal);
    }
}

}  // namespace dspwavedecks
