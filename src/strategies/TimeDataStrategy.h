#pragma once

#include <string>
#include <vector>

#include "DataStrategy.h"
#include "wavedeck/WaveDeckClientSettings.h"

namespace dspwavedecks {

/// Client messages of a time display. Decides which stretch of each signal's buffer the client gets, the newest points
/// within the time range or the window of the trigger event in use, and cuts it out of each channel. Points are not
/// thinned: every point of the stretch goes out, and older ones are left away.
class TimeDataStrategy : public DataStrategy {
public:
    TimeDataStrategy();
    ~TimeDataStrategy() override;

    void processDataAllSignals(const Buffers& data, int numSignals, std::vector<int>& numChannels,
                               std::vector<int>& numPoints, std::vector<std::string>& ids,
                               ObjectPointer& message) override;

    using Settings = wavedeck::WaveDeckClientSettings;

    /// Chooses the stretch of a signal of P points per channel. A replay goes out whole; without a time range the
    /// newest maxPointsPerChannel points; with one, its intervals and one point more, n + 1 points for n intervals, so
    /// that the limit of this path is one point above that of the others: meant so.
    virtual void computeDataStartAndEndIdx(const Buffers& data, int signal, int numPointsPerChannel, bool triggerActive,
                                           Settings& settings);
    /// Chooses the window of the newest trigger event that the buffer holds in full.
    virtual void computeTriggerDataStartAndEndIdx(const Buffers& data, int signal, int numPointsPerChannel,
                                                  Settings& settings);
    /// The newest points up to the limit.
    virtual void resetDataStartAndEndIdx(int numPointsPerChannel);
    /// The times of the stretch, without the signal's offset, which the client gets apart.
    virtual void packageTimePocoArray(const Buffers& data, int signal, double offset, int numPointsPerChannel,
                                      ArrayPointer& timeArray, Settings& settings);
    /// The values of the stretch of one channel, with their limits.
    /// channel  counted from 1
    virtual void processDataForChannel(const Buffers& data, Limits& dataMax, Limits& dataMin, int signal, int channel,
                                       ArrayPointer& dataArray, bool magPhase, int numBlocks, int numPointsPerChannel,
                                       ArrayPointer& nanArray);
    /// Slot of the host's own.
    virtual void hostOperation8() {}
    virtual void packageSignalPocoObject(Settings& settings, const Buffers& data, int signal, int numChannels,
                                         int numBlocks, double offset, int numPointsPerChannel,
                                         ArrayPointer& signalsArray, ArrayPointer& timeArray,
                                         const std::vector<std::string>& ids);
    virtual void addTriggerInformation(const Buffers& data, int signal, int numPointsPerChannel, Settings& settings,
                                       ObjectPointer& measurements);
    /// Hooks for derived strategies.
    virtual void runAdditionalPreProcessingCode(Settings&) {}
    virtual void runAdditionalPostProcessingCode(Settings&, const std::vector<std::string>&, ObjectPointer&) {}

    void resetTriggerStateInfo();
    void addMeasurementInformation(ObjectPointer& measurements);

    [[nodiscard]] int getDataStartIdx() const { return dataStartIdx; }
    [[nodiscard]] int getDataEndIdx() const { return dataEndIdx; }

private:
    bool isTriggerActive() const;
    void addStorageInformation(Settings& settings, ObjectPointer& message);

    // Options.
    int maxPointsPerChannel = 15360;

    // Scratch of one update.
    int dataStartIdx = 0;  ///< first index within a channel block to send
    int dataEndIdx = 0;    ///< one past the last
    int numSignals = 0;
    bool triggerFound = false;          ///< a usable trigger event was found
    unsigned long triggerEventIdx = 0;  ///< its position in the event queue
    unsigned long triggerSignal = 0;    ///< its signal
};

}  // namespace dspwavedecks
