#include "PeakFinderFilter.h"

#include "Board.h"
#include "JsonArrays.h"
#include "MagPhaseFilter.h"
#include "OptionTable.h"
#include "PeakFinderOptions.h"

namespace dspwavedecks {

namespace {

/// A setter that is given a number as text.
auto fromText(PeakFinder& finder, void (PeakFinder::*setter)(const double&)) {
    return [&finder, setter](const std::string& text) { (finder.*setter)(std::stod(text)); };
}

}  // namespace

PeakFinderFilter::PeakFinderFilter() : peakFinder_(std::make_unique<PeakFinder>()) {
    registerUsualActions();
}

PeakFinderFilter::~PeakFinderFilter() = default;

void PeakFinderFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    const std::vector<unsigned long> range = getDataRange(signal);
    if (measurementChannel_ >= 0 && isRangeInFrame(range)) {
        publish(peakFinder_->findPeaks(data, range, PeakSelectionLastMaximum));
    } else {
        publish(peakFinderStruct());
    }
    updateFilterSignalAndChannel();
}

void PeakFinderFilter::publish(const peakFinderStruct& peaks) {
    board::write(getBoard(), peakFinder, peaks);
}

void PeakFinderFilter::setPropertiesOnSetup(const PropertyList& list) {
    BaseFilter::setPropertiesOnSetup(list);
    setPropertiesImpl(list);
}

void PeakFinderFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<peakFinderStruct>(getBoard(), peakFinder);
    namespace options = catalogue::peakFinder;
    readOptions(list,                                                                                  //
                ifPresent<options::numPeaks>(*peakFinder_, &PeakFinder::setNumPeaks),                  //
                ifPresent<options::minHeight>(fromText(*peakFinder_, &PeakFinder::setMinHeight)),      //
                ifPresent<options::minDistance>(fromText(*peakFinder_, &PeakFinder::setMinDistance)),  //
                ifPresent<options::threshold>(fromText(*peakFinder_, &PeakFinder::setThreshold)),      //
                ifPresent<options::peakFinderEnabled>(active),                                         //
                ifPresent<catalogue::base::magPhaseData>(magPhaseData_),                               //
                ifPresent<catalogue::base::autoSpan>(autoSpan_),                                       //
                ifPresent<catalogue::base::customSpan>(customSpan_));
}

Poco::SharedPtr<Poco::JSON::Object> PeakFinderFilter::packageImpl(const std::string& clientID) {
    const auto record = board::read<peakFinderStruct>(findBoard(clientID), peakFinder);
    std::vector<double> locations;
    std::vector<double> values;
    for (const peakFinderStruct::Peak& peak : record.peaks) {
        locations.push_back(peak.location);
        values.push_back(peak.value);
    }
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("locations", arrayText(locations.data(), locations.size()));
    package->set("peaks", arrayText(values.data(), values.size()));
    package->set("numPeaks", record.numPeaks);
    return package;
}

}  // namespace dspwavedecks
