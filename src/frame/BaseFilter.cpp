#include "BaseFilter.h"

#include <cstddef>

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"

namespace dspwavedecks {

namespace options = catalogue::base;

BaseFilter::BaseFilter() {
    actionTable.max_load_factor(1.0F);
}

BaseFilter::~BaseFilter() = default;

void BaseFilter::registerAction(const std::string& action, ActionHandler handler) {
    actionTable[action] = [this, handler](const PropertyList& list) { (this->*handler)(list); };
}

void BaseFilter::registerUsualActions() {
    registerAction("setup", &BaseFilter::setPropertiesOnSetup);
    registerAction("tune", &BaseFilter::setPropertiesOnTune);
    registerAction("onInputSizeChange", &BaseFilter::onInputSizeChange);
}

void BaseFilter::runAction(const PropertyList& list) {
    const auto action = actionTable.find(readStringOption(list, "action"));
    if (action != actionTable.end()) {
        action->second(list);
    }
}

void BaseFilter::tuneImpl(const PropertyList& list) {
    runAction(list);
}

void BaseFilter::rollbackImpl(const PropertyList& list) {
    runAction(list);
}

void BaseFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                         //
                required<options::clientID>(clientID),        //
                required<options::numChannels>(numChannels),  //
                required<options::frameSize>(frameSize),      //
                required<options::numSignals>(numSignals));
    const auto client = findClient(clientID);
    isComplex = client->isComplex();
    timeBased = client->getTimeBased();
    totalNumChannels = getTotalNumChannels();
    readOptions(list,                                             //
                ifPresent<options::magPhaseData>(magPhaseData_),  //
                ifPresent<options::autoSpan>(autoSpan_),          //
                ifPresent<options::customSpan>(customSpan_));
}

void BaseFilter::setupEvents() {}

void BaseFilter::setPropertiesOnTune(const PropertyList& list) {
    setPropertiesImpl(list);
}

void BaseFilter::onInputSizeChange(const PropertyList& list) {
    readOptions(list,                                         //
                required<options::numChannels>(numChannels),  //
                required<options::frameSize>(frameSize));
}

void BaseFilter::onRollback(const PropertyList&) {}

void BaseFilter::setPropertiesImpl(const PropertyList& list) {
    auto& settings = getBoard();
    board::addIfAbsent<int>(settings, measurementSignal);
    board::addIfAbsent<int>(settings, measurementChannel);
    readOptions(list,                                                       //
                ifPresent<options::measurementSignal>(measurementSignal_),  //
                ifPresent<options::measurementChannel>(measurementChannel_));
}

wavedeck::WaveDeckClientSettings& BaseFilter::getBoard() const {
    return findBoard(clientID);
}

bool BaseFilter::isComplexSignal(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    return index < isComplex.size() && isComplex[index] != 0;
}

bool BaseFilter::isMagPhaseSignal(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    return index < magPhaseData_.size() && magPhaseData_[index];
}

int BaseFilter::getChannelCount(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    return index < numChannels.size() ? numChannels[index] : 0;
}

unsigned long BaseFilter::getTotalNumChannels() {
    long total = 0;
    for (int signal = 0; signal < static_cast<int>(numChannels.size()); ++signal) {
        const int count = getChannelCount(signal);
        total += isComplexSignal(signal) ? count / 2 : count;
    }
    totalNumChannels = static_cast<unsigned long>(total);
    return totalNumChannels;
}

unsigned long BaseFilter::getNumPointsPerChannel(const int& signal) {
    long channels = getChannelCount(signal);
    if (!isComplexSignal(signal) && isMagPhaseSignal(signal)) {
        channels *= 2;
    }
    return channels < 0 ? 0 : inputLength / static_cast<unsigned long>(channels + 1);
}

std::vector<unsigned long> BaseFilter::getDataRange(const int& signal) {
    const unsigned long points = getNumPointsPerChannel(signal);
    const auto channel = static_cast<unsigned long>(measurementChannel_);
    return {points + points * channel, (channel + 2) * points};
}

bool BaseFilter::isRangeInFrame(const std::vector<unsigned long>& range) const {
    return range[0] <= range[1] && range[1] <= inputLength;
}

void BaseFilter::updateFilterSignalAndChannel() {
    auto& settings = getBoard();
    board::write(settings, measurementSignal, static_cast<int>(measurementSignal_));
    board::write(settings, measurementChannel, static_cast<int>(measurementChannel_));
}

void BaseFilter::copyMagPhaseData(const std::string& key) {
    if (const auto* const marks = board::find<std::vector<bool>>(getBoard(), key)) {
        magPhaseData_ = *marks;
    }
}

Poco::SharedPtr<Poco::JSON::Object> BaseFilter::packageImpl(const std::string& clientID) {
    const auto& settings = findBoard(clientID);
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("signal", board::read<int>(settings, measurementSignal));
    package->set("channel", board::read<int>(settings, measurementChannel));
    return package;
}

}  // namespace dspwavedecks
