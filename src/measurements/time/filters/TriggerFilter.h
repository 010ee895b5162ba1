#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <boost/circular_buffer.hpp>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "GivenTriggerWindows.h"
#include "TimeDomainTriggerController.h"
#include "triggerStruct.h"

namespace dspwavedecks {

/// Gives the time display a trigger: feeds the samples of its signal and channel to the trigger engine and keeps the
/// windows of its events in a queue on the board, from which the time strategy takes the stretch that it shows. Which
/// events there are is the engine's to decide.
///
/// One mutex of the class guards engines and queues: no change of options overlaps a frame, in any filter.
class TriggerFilter : public BaseFilter {
public:
    using Queue = boost::circular_buffer<triggerStruct>;

    TriggerFilter();
    ~TriggerFilter() override;

    /// Takes no frame while the queue is full: it must be drained for triggering to go on.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    /// False for a replay.
    bool isActive() override { return active && !repositorySource; }
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// Signal and channel have options of their own here, "triggerSignal" and "triggerChannel".
    void setPropertiesImpl(const PropertyList& list) override;

    /// Whether a window that is not complete at that time is to be handed out all the same.
    virtual bool needToFlushQueue(double lastTime);
    /// Length of the window in seconds.
    virtual double getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings);

    /// Feeds the samples of one channel of the frame in hand to an engine and stores the last time. False without
    /// samples.
    bool addDataPointsToTrigger(const double* data, const unsigned long& signal, const unsigned long& channel,
                                deckutil::TimeDomainTriggerController& engine, const bool& reserved,
                                const double& timeRange, double& lastTime);

    /// The values behind the words of the options. A word that is not known reads as the value 0, and is known from
    /// then on.
    deckutil::TDTC::ModeEnum getModeEnum(const std::string& word) { return modes[word]; }
    deckutil::TDTC::TypeEnum getTypeEnum(const std::string& word) { return types[word]; }
    deckutil::TDTC::PolarityEnum getPolarityEnum(const std::string& word) { return polarities[word]; }

    /// The client's queue; null if the board has none. The queue itself is read without the lock.
    static Queue* getTriggerEventDataQueue(const std::string& clientID);

    /// The event at an index, counted from the oldest, as texts for the client; it and all older ones leave the queue,
    /// or all with clearQueue. Without an event only "triggerFound", false, and the queue stays as it is.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID, const unsigned long& signal,
                                                           const bool& triggerFound, const unsigned long& eventIndex,
                                                           const bool& clearQueue);

    inline static const std::string trigger = "trigger";
    /// A list of start and end times under this key takes the engine's place from the next setup on
    /// (GivenTriggerWindows).
    inline static const std::string givenWindows = "triggerEngineWindows";
    inline static std::mutex mMutex;

private:
    void beginGap();
    void feed(const double* data, unsigned long points, unsigned long channel, double timeRange,
              deckutil::TimeDomainTriggerController& engine, double& lastTime) const;
    void requestWindow(bool anySamples, double lastTime, double timeRange, double& start, double& end);
    void takeEvent(Queue& queue, double start, double end) const;
    void setMode(const std::string& word, const PropertyList& list);
    void setTypeAndDurations(const std::string& word, const PropertyList& list);

    std::unique_ptr<deckutil::TimeDomainTriggerController> controller;
    std::optional<GivenTriggerWindows> given;

    // Options.
    unsigned long maxQueueSize = 1000;
    std::map<std::string, deckutil::TDTC::ModeEnum> modes;
    std::map<std::string, deckutil::TDTC::TypeEnum> types;
    std::map<std::string, deckutil::TDTC::PolarityEnum> polarities;

    // Derived.
    bool repositorySource = false;  ///< the client's source is a replay
};

}  // namespace dspwavedecks
