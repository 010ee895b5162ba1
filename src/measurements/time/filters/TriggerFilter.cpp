#include "TriggerFilter.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "Board.h"
#include "DisplayedSpan.h"
#include "MagPhaseFilter.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "TriggerOptions.h"

namespace dspwavedecks {

namespace options = catalogue::trigger;
namespace tdtc = deckutil::TDTC;

namespace {

template <class Value, std::size_t count>
std::map<std::string, Value> tableOf(const catalogue::Word (&words)[count]) {
    std::map<std::string, Value> table;
    for (const catalogue::Word& word : words) {
        table.emplace(word.text, static_cast<Value>(word.value));
    }
    return table;
}

}  // namespace

TriggerFilter::TriggerFilter()
    : controller(std::make_unique<deckutil::TimeDomainTriggerController>()),
      modes(tableOf<tdtc::ModeEnum>(options::modeWords)),
      types(tableOf<tdtc::TypeEnum>(options::typeWords)),
      polarities(tableOf<tdtc::PolarityEnum>(options::polarityWords)) {
    registerUsualActions();
}

TriggerFilter::~TriggerFilter() = default;

bool TriggerFilter::needToFlushQueue(double) {
    return false;
}

double TriggerFilter::getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings) {
    return displayedTimeRange(*this, signal, settings, {.offsetOfFirstSignal = true, .axesSpanForEmptyFrame = true});
}

void TriggerFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    const std::lock_guard lock(mMutex);
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    auto& settings = getBoard();
    Queue* const queue = board::find<Queue>(settings, trigger);
    if (queue == nullptr || queue->size() >= maxQueueSize || !isRangeInFrame(BaseFilter::getDataRange(signal))) {
        beginGap();
        return;
    }
    const double timeRange = getTimeRange(signal, settings);
    const unsigned long points = getNumPointsPerChannel(signal);
    double lastTime = 0.0;
    feed(data, points, static_cast<unsigned long>(measurementChannel_), timeRange, *controller, lastTime);
    if (controller->getMode() == tdtc::Once && !controller->getEnableOnceMode()) {
        return;
    }
    double start = 0.0;
    double end = 0.0;
    requestWindow(points != 0, lastTime, timeRange, start, end);
    if (std::isfinite(start) && std::isfinite(end)) {
        takeEvent(*queue, start, end);
    }
}

void TriggerFilter::requestWindow(bool anySamples, double lastTime, double timeRange, double& start, double& end) {
    if (given && anySamples) {
        if (given->takeNext(start, end) && controller->getMode() == tdtc::Once) {
            controller->setEnableOnceMode(false);  // as the engine does when it hands a window out
        }
    } else if (given) {
        given->getLast(start, end);
    } else if (anySamples) {
        controller->getTriggerWindow(0.0, lastTime, timeRange, needToFlushQueue(lastTime), start, end);
    } else {
        controller->getLastTriggerWindow(start, end);
    }
}

/// Nothing is interpolated between samples with others between them that the engine did not see, or of two sources.
void TriggerFilter::beginGap() {
    constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
    controller->processSample(unknown, unknown, unknown, unknown);
}

void TriggerFilter::feed(const double* data, unsigned long points, unsigned long channel, double timeRange,
                         deckutil::TimeDomainTriggerController& engine, double& lastTime) const {
    engine.processSamples(data, data + points * (channel + 1), points, timeRange);
    if (points != 0) {
        lastTime = data[points - 1];
    }
}

void TriggerFilter::takeEvent(Queue& queue, double start, double end) const {
    triggerStruct event;
    event.startTime = start;
    event.endTime = end;
    event.position = start + controller->getPosition() * (end - start);
    event.level = controller->getLevel();
    event.highLevel = controller->getUpperLevel();
    event.lowLevel = controller->getLowerLevel();
    event.enableOnceMode = controller->getEnableOnceMode();
    event.signal = static_cast<std::uint64_t>(measurementSignal_);
    event.mode = controller->getMode();
    queue.push_back(event);
}

bool TriggerFilter::addDataPointsToTrigger(const double* data, const unsigned long& signal,
                                           const unsigned long& channel, deckutil::TimeDomainTriggerController& engine,
                                           const bool& /*reserved*/, const double& timeRange, double& lastTime) {
    const unsigned long points = getNumPointsPerChannel(static_cast<int>(signal));
    if (points == 0 || !isRangeInFrame({points * (channel + 1), points * (channel + 2)})) {
        return false;
    }
    feed(data, points, channel, timeRange, engine, lastTime);
    return true;
}

void TriggerFilter::setPropertiesOnSetup(const PropertyList& list) {
    BaseFilter::setPropertiesOnSetup(list);
    setPropertiesImpl(list);
    const std::lock_guard lock(mMutex);
    const auto* bounds = board::find<std::vector<double>>(getBoard(), givenWindows);
    given = bounds == nullptr ? std::nullopt : std::optional<GivenTriggerWindows>(*bounds);
}

void TriggerFilter::setMode(const std::string& word, const PropertyList& list) {
    controller->setMode(getModeEnum(word));
    if (word != "once") {
        controller->setEnableOnceMode(true);
    } else {
        readOptions(list, ifPresent<options::rearm>([this](bool rearm) { controller->setEnableOnceMode(rearm); }));
    }
}

void TriggerFilter::setTypeAndDurations(const std::string& word, const PropertyList& list) {
    const auto setMinTime = [this](const std::string& seconds) { controller->setMinTime(std::stod(seconds)); };
    const auto setMaxTime = [this](const std::string& seconds) { controller->setMaxTime(std::stod(seconds)); };
    controller->setType(getTypeEnum(word));
    if (word == "runt") {
        readOptions(list, ifPresent<options::minDuration>(setMinTime), ifPresent<options::maxDuration>(setMaxTime));
    } else {
        readOptions(list, ifPresent<options::minPulseWidth>(setMinTime), ifPresent<options::maxPulseWidth>(setMaxTime));
    }
}

void TriggerFilter::setPropertiesImpl(const PropertyList& list) {
    const std::lock_guard lock(mMutex);
    board::addIfAbsent(getBoard(), trigger, Queue(maxQueueSize));
    using Engine = deckutil::TimeDomainTriggerController;
    Engine& engine = *controller;
    readOptions(
        list,  //
        ifPresent<options::mode>([&](const std::string& word) { setMode(word, list); }),
        ifPresent<options::position>([&](double percent) { engine.setPosition(percent / 100.0); }),
        ifPresent<options::type>([&](const std::string& word) { setTypeAndDurations(word, list); }),
        ifPresent<options::polarity>([&](const std::string& word) { engine.setPolarity(getPolarityEnum(word)); }),
        ifPresent<options::autoLevel>(engine, &Engine::setAutoLevel),
        ifPresent<options::level>(engine, &Engine::setLevel),
        ifPresent<options::hysteresis>(engine, &Engine::setHysteresis),
        ifPresent<options::highLevel>(engine, &Engine::setUpperLevel),
        ifPresent<options::lowLevel>(engine, &Engine::setLowerLevel),
        ifPresent<options::timeout>(engine, &Engine::setTimeout), ifPresent<options::delay>(engine, &Engine::setDelay),
        ifPresent<options::holdoff>(engine, &Engine::setHoldoff),  //
        ifPresent<options::triggerEnabled>(active));
    // Switching off wins over a mode of the same list; switching on again without a mode leaves it off: meant so.
    if (hasOption(list, std::string(options::triggerEnabled.name)) && !active) {
        engine.setMode(getModeEnum("off"));
    }
    const auto client = findClient(clientID);
    client->setNeedsWindowing(!active);
    repositorySource = client->isDataSourceRepository();
    const auto source = std::pair(measurementSignal_, measurementChannel_);
    readOptions(list,                                                     //
                ifPresent<catalogue::base::magPhaseData>(magPhaseData_),  //
                ifPresent<catalogue::base::autoSpan>(autoSpan_),          //
                ifPresent<catalogue::base::customSpan>(customSpan_),      //
                ifPresent<options::triggerChannel>(measurementChannel_),  //
                ifPresent<options::triggerSignal>(measurementSignal_));
    if (source != std::pair(measurementSignal_, measurementChannel_)) {
        beginGap();
    }
}

TriggerFilter::Queue* TriggerFilter::getTriggerEventDataQueue(const std::string& clientID) {
    const std::lock_guard lock(mMutex);
    return board::find<Queue>(findBoard(clientID), trigger);
}

Poco::SharedPtr<Poco::JSON::Object> TriggerFilter::packageImpl(const std::string& clientID,
                                                               const unsigned long& /*signal*/,
                                                               const bool& triggerFound,
                                                               const unsigned long& eventIndex,
                                                               const bool& clearQueue) {
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    Queue* const queue = getTriggerEventDataQueue(clientID);
    if (!triggerFound || queue == nullptr || eventIndex >= queue->size()) {
        package->set("triggerFound", false);
        return package;
    }
    const triggerStruct& event = (*queue)[eventIndex];
    package->set("startTime", numberText(event.startTime));
    package->set("endTime", numberText(event.endTime));
    package->set("position", numberText(event.position));
    package->set("level", numberText(event.level));
    package->set("highLevel", numberText(event.highLevel));
    package->set("lowLevel", numberText(event.lowLevel));
    package->set("triggerFound", true);
    if (clearQueue) {
        queue->clear();
    } else {
        queue->erase_begin(eventIndex + 1);
    }
    return package;
}

}  // namespace dspwavedecks
