#include "BilevelMeasurementsFilter.h"

#include "Board.h"
#include "DisplayedSpan.h"
#include "MagPhaseFilter.h"
#include "MeasurementsDataCacheFilter.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "TimeMeasurementOptions.h"

namespace dspwavedecks {

BilevelMeasurementsFilter::BilevelMeasurementsFilter() : measurements(std::make_unique<BilevelMeasurements>()) {
    registerUsualActions();
}

BilevelMeasurementsFilter::~BilevelMeasurementsFilter() = default;

double BilevelMeasurementsFilter::getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) {
    return displayedTimeRange(*this, signal, settings, {.offsetOfFirstSignal = true});
}

std::vector<unsigned long> BilevelMeasurementsFilter::getDataRange(const int& signal) {
    auto& settings = getBoard();
    return newestRange(MeasurementsDataCacheFilter::findCache(settings), getTimeRange(signal, settings));
}

void BilevelMeasurementsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    if (!findClient(clientID)->isDataSourceRepository()) {
        measureCachedSpan(signal, EmptySpan::PublishLast);
        return;
    }
    const std::vector<unsigned long> range = BaseFilter::getDataRange(signal);
    publish(isRangeInFrame(range) ? *measurements->computeBilevelMetrics(data, range) : bilevelMeasurementsStruct{});
}

void BilevelMeasurementsFilter::measureCachedSpan(int signal, EmptySpan emptySpan) {
    const std::vector<unsigned long> range = getDataRange(signal);
    const unsigned long count = range[0] < range[1] ? range[1] - range[0] : 0;
    if (count == 0 && emptySpan == EmptySpan::Ignore) {
        return;
    }
    if (count > 0) {
        MeasurementsDataCacheFilter::findCache(getBoard())->copyTimeAndDataInRange(range, span);
    }
    publish(*measurements->computeBilevelMetrics(span.data(), {count, 2 * count}));
}

void BilevelMeasurementsFilter::publish(const bilevelMeasurementsStruct& metrics) {
    board::write(getBoard(), bilevelMeasurements, metrics);
    updateFilterSignalAndChannel();
}

void BilevelMeasurementsFilter::setPropertiesOnSetup(const PropertyList& list) {
    BaseFilter::setPropertiesOnSetup(list);
    setPropertiesImpl(list);
}

void BilevelMeasurementsFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<bilevelMeasurementsStruct>(getBoard(), bilevelMeasurements);
    namespace options = catalogue::bilevelMeasurements;
    using Setters = BilevelMeasurements;
    readOptions(list,  //
                ifPresent<options::autoStateLevel>(*measurements, &Setters::setAutoStateLevel),
                ifPresent<options::highStateLevel>(*measurements, &Setters::setHighStateLevel),
                ifPresent<options::lowStateLevel>(*measurements, &Setters::setLowStateLevel),
                ifPresent<options::stateLevelTolerance>(*measurements, &Setters::setStateLevelTolerance),
                ifPresent<options::upperReferenceLevel>(*measurements, &Setters::setUpperReferenceLevel),
                ifPresent<options::midReferenceLevel>(*measurements, &Setters::setMidReferenceLevel),
                ifPresent<options::lowerReferenceLevel>(*measurements, &Setters::setLowerReferenceLevel),
                ifPresent<options::settleSeek>(*measurements, &Setters::setSettleSeek),
                ifPresent<options::showTransitions>(*measurements, &Setters::setComputeTransitions),
                ifPresent<options::showAberrations>(*measurements, &Setters::setComputeAberrations),
                ifPresent<options::showCycles>(*measurements, &Setters::setComputeCycles),
                ifPresent<options::bilevelMeasurementsEnabled>(active),
                ifPresent<catalogue::base::magPhaseData>(magPhaseData_),
                ifPresent<catalogue::base::autoSpan>(autoSpan_), ifPresent<catalogue::base::customSpan>(customSpan_));
}

Poco::SharedPtr<Poco::JSON::Object> BilevelMeasurementsFilter::packageImpl(const std::string& clientID) {
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    const auto metrics = board::read<bilevelMeasurementsStruct>(findBoard(clientID), bilevelMeasurements);
    for (const bilevelMeasurementsField& field : bilevelMeasurementsFields) {
        package->set(field.name, numberText(metrics.*field.value));
    }
    return package;
}

}  // namespace dspwavedecks
