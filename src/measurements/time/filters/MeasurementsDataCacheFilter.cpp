#include "MeasurementsDataCacheFilter.h"

#include "AxesOfSignal.h"
#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"
#include "TimeMeasurementOptions.h"

namespace dspwavedecks {

namespace options = catalogue::base;

MeasurementsDataCacheFilter::MeasurementsDataCacheFilter() {
    registerUsualActions();
    registerAction("onRollback", &BaseFilter::onRollback);
}

MeasurementsDataCacheFilter::~MeasurementsDataCacheFilter() = default;

MeasurementsDataCache* MeasurementsDataCacheFilter::findCache(wavedeck::WaveDeckClientSettings& settings) {
    return board::find<MeasurementsDataCache>(settings, measurementsDataCache);
}

void MeasurementsDataCacheFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_ || findClient(clientID)->isDataSourceRepository()) {
        return;
    }
    MeasurementsDataCache* const cache = findCache(getBoard());
    if (cache == nullptr || !isRangeInFrame(BaseFilter::getDataRange(signal))) {
        return;
    }
    cache->addData(data, static_cast<unsigned long>(measurementChannel_), getNumPointsPerChannel(signal));
    updateFilterSignalAndChannel();
}

void MeasurementsDataCacheFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                         //
                required<options::clientID>(clientID),        //
                required<options::numChannels>(numChannels),  //
                required<options::numSignals>(numSignals));
    const auto client = findClient(clientID);
    isComplex = client->isComplex();
    timeBased = client->getTimeBased();
    readOptions(list, ifPresent<options::magPhaseData>(magPhaseData_));
    addAxesOfSignal(getBoard());
    setPropertiesImpl(list);
    setupEvents();
    simStartTime = client->getWaveDeckObj()->getSimStartTime();
}

void MeasurementsDataCacheFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<MeasurementsDataCache>(getBoard(), measurementsDataCache);
    readOptions(list, ifPresent<options::magPhaseData>(magPhaseData_));
}

void MeasurementsDataCacheFilter::setupEvents() {
    if (!findClient(clientID)->isDataSourceRepository()) {
        reset();
    }
}

void MeasurementsDataCacheFilter::reset() {
    if (MeasurementsDataCache* const cache = findCache(getBoard())) {
        cache->reset();
    }
}

void MeasurementsDataCacheFilter::onRollback(const PropertyList& list) {
    readOptions(list, ifPresent<catalogue::measurementsDataCache::rollbacktime>([this](double rollbackTime) {
                    if (MeasurementsDataCache* const cache = findCache(getBoard())) {
                        cache->onRollback(rollbackTime, simStartTime);
                    }
                }));
}

bool MeasurementsDataCacheFilter::isDataCacheMemoryLimitReached(const std::string& clientID) {
    const MeasurementsDataCache* const cache = findCache(findBoard(clientID));
    return cache != nullptr && cache->memoryLimitReached;
}

}  // namespace dspwavedecks
