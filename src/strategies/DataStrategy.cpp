#include "DataStrategy.h"

#include <algorithm>
#include <limits>

#include "Board.h"
#include "NumberText.h"

namespace dspwavedecks {

DataStrategy::DataStrategy() = default;

DataStrategy::~DataStrategy() = default;

DataStrategy::LimitPair::LimitPair() {
    smallest.fill(std::numeric_limits<double>::infinity());
    largest.fill(-std::numeric_limits<double>::infinity());
}

bool DataStrategy::areAllChannelDataValid(const Buffers& data, int n) {
    for (int signal = 0; signal < n; ++signal) {
        if (!isSignalDataValid(data, signal)) {
            return false;
        }
    }
    return true;
}

bool DataStrategy::isSignalDataValid(const Buffers& data, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    return index < data.size() && !data[index].empty();
}

int DataStrategy::countSignals(const Buffers& data, int numSignals, const std::vector<int>& numChannels,
                               const std::vector<std::string>& ids) {
    const std::size_t shortest = std::min({data.size(), numChannels.size(), ids.size()});
    return std::min(numSignals, static_cast<int>(shortest));
}

int DataStrategy::countPoints(const std::vector<double>& buffer, int blocks) {
    return blocks <= 0 ? 0 : static_cast<int>(buffer.size() / static_cast<std::size_t>(blocks));
}

int DataStrategy::subplotOf(int channel, int channels, bool magPhase) {
    return magPhase && channel > channels / 2 ? 1 : 0;
}

std::string DataStrategy::limitsText(const Limits& limits) {
    return arrayText(limits.data(), limits.size());
}

bool DataStrategy::isStageActive(const std::string& name) const {
    return findClient(clientID)->getFilterImpl(name)->isActive();
}

bool DataStrategy::attachIfActive(ObjectPointer& measurements, const char* key,
                                  std::initializer_list<const char*> stages, const Packager& package) const {
    const bool isActive =
        std::any_of(stages.begin(), stages.end(), [this](const char* stage) { return isStageActive(stage); });
    if (isActive) {
        measurements->set(key, package(clientID));
    }
    return isActive;
}

DataStrategy::ArrayPointer DataStrategy::packageNumbers(const double* values, std::size_t count, double shift) {
    ArrayPointer array = takeArray(count);
    JsonArrayWriter writer(*array);
    if (shift == 0.0) {
        writer.append(values, count);
    } else {
        writer.appendShifted(values, count, shift);
    }
    writer.finish();
    return array;
}

DataStrategy::ArrayPointer DataStrategy::packageIntegers(const std::vector<int>& values) {
    ArrayPointer array = takeArray(values.size());
    JsonArrayWriter writer(*array);
    writer.append(values);
    writer.finish();
    return array;
}

DataStrategy::ObjectPointer DataStrategy::makeChannel(int channel, const std::string& id, const ChannelFacts& facts,
                                                      const ArrayPointer& data, const ArrayPointer& nanIndex) {
    ObjectPointer object = new Poco::JSON::Object;
    object->set("data", data);
    object->set("NaNIdx", nanIndex);
    object->set(facts.axisKey, facts.axis);
    object->set("dbid", "db" + numberText(static_cast<unsigned long>(channel)));
    object->set("id", id);
    object->set(facts.offsetKey, facts.offset);
    object->set("subplotNum", facts.subplotNum);
    return object;
}

DataStrategy::ObjectPointer DataStrategy::makeSignal(const ArrayPointer& channels, int numChannels,
                                                     const std::string& id, const std::string& dataMin,
                                                     const std::string& dataMax) {
    ObjectPointer object = new Poco::JSON::Object;
    object->set("channel", channels);
    object->set("numChannels", numChannels);
    object->set("dataMin", dataMin);
    object->set("dataMax", dataMax);
    object->set("id", id);
    return object;
}

}  // namespace dspwavedecks
