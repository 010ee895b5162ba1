#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "wavedeck/Visibility.h"
#include "wavedeck/WaveDeck.h"
#include "wavedeck/WaveDeckClientSettings.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck {

/// Running state of a simulation, as stages test it: zero when the simulation has ended.
enum class SimStatus : int { Ended = 0, Running = 1, Paused = 2 };

/// The facts of one client that stages and strategies ask for, and its settings board. The driver sets them.
class WAVEDECK_API WaveDeckClientInfo {
public:
    WaveDeckClientInfo();
    WaveDeckClientInfo(const WaveDeckClientInfo&) = delete;
    WaveDeckClientInfo& operator=(const WaveDeckClientInfo&) = delete;
    ~WaveDeckClientInfo();

    // What stages and strategies call.

    WaveDeckClientSettings& getClientSettings() { return settings_; }

    /// Per signal: non-zero when complex.
    const std::vector<int>& isComplex() const { return isComplex_; }
    const bool& getTimeBased() const { return timeBased_; }
    /// Seconds between samples of a signal; 0 for a signal that is not there.
    const double& getSampleTime(int signal) const;
    /// Time offset of a signal, seconds; 0 for a signal that is not there.
    double getOffset(int signal) const;

    double getSimulationTime() const { return simulationTime_; }
    double getSimStartTime() const { return waveDeck_.getSimStartTime(); }
    double getSimStopTime() const { return simStopTime_; }
    /// Zero when the simulation has ended.
    int getSimStatus() const { return static_cast<int>(simStatus_); }

    /// The stage made under a factory's name. Never empty: a name outside the chain gives a stage that is not active.
    const std::shared_ptr<WaveDeckTransformImpl>& getFilterImpl(const std::string& name) const;

    /// The axes that show a signal: by the board's "WDSigIdToAxesId" where a stage has put it there, else the signal.
    unsigned long getAxesIdFromSignalId(unsigned long signal);

    bool isDataSourceRepository() const { return repository_; }
    void setIsDataSourceRepository(bool repository) { repository_ = repository; }
    bool isOrWasFastRestartActive() const { return fastRestart_; }
    bool isTimeSpanOneFramePeriod() const { return timeSpanOneFramePeriod_; }
    bool usingStreamPlugInBF() const { return streamPlugInBF_; }
    void setNeedsWindowing(bool needs) { needsWindowing_ = needs; }
    void setContinueProcessing(bool proceed) { continueProcessing_ = proceed; }
    WaveDeck* getWaveDeckObj() { return &waveDeck_; }

    /// One factor a signal by which the stage changes the channel count; guarded by channelSizeFactorsMutex.
    std::vector<double> channelSizeFactors;
    std::mutex channelSizeFactorsMutex;

    // What the driver sets and asks.

    void setIsComplex(std::vector<int> isComplex) { isComplex_ = std::move(isComplex); }
    void setTimeBased(bool timeBased) { timeBased_ = timeBased; }
    void setSampleTimes(std::vector<double> seconds) { sampleTimes_ = std::move(seconds); }
    void setOffsets(std::vector<double> seconds) { offsets_ = std::move(seconds); }
    void setSimulationTime(double seconds) { simulationTime_ = seconds; }
    void setSimStartTime(double seconds) { waveDeck_.setSimStartTime(seconds); }
    void setSimStopTime(double seconds) { simStopTime_ = seconds; }
    void setSimStatus(SimStatus status) { simStatus_ = status; }
    void setFastRestart(bool activeOrWas) { fastRestart_ = activeOrWas; }
    void setTimeSpanOneFramePeriod(bool one) { timeSpanOneFramePeriod_ = one; }
    void setUsingStreamPlugInBF(bool uses) { streamPlugInBF_ = uses; }
    /// Makes a stage findable under its factory's name; a null stage takes the name away.
    void setFilterImpl(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> stage);
    bool needsWindowing() const { return needsWindowing_; }
    bool continueProcessing() const { return continueProcessing_; }

private:
    WaveDeckClientSettings settings_;
    WaveDeck waveDeck_;
    std::vector<int> isComplex_;
    std::vector<double> sampleTimes_;
    std::vector<double> offsets_;
    std::map<std::string, std::shared_ptr<WaveDeckTransformImpl>> stages_;
    std::shared_ptr<WaveDeckTransformImpl> inactiveStage_;
    bool timeBased_ = true;
    double simulationTime_ = 0.0;
    double simStopTime_ = 0.0;
    SimStatus simStatus_ = SimStatus::Running;
    std::atomic<bool> repository_{false};
    bool fastRestart_ = false;
    bool timeSpanOneFramePeriod_ = false;
    bool streamPlugInBF_ = false;
    std::atomic<bool> needsWindowing_{false};
    std::atomic<bool> continueProcessing_{true};
};

}  // namespace wavedeck
