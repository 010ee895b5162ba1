#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <string>
#include <vector>

#include "BaseFilter.h"
#include "RememberedClient.h"

namespace dspwavedecks {

/// Counts what passes through the chain of a plain stream: frames, samples, and the time that the signals have
/// reached. Its frames are raw: the channels without a block of times ahead of them, so that inputLength counts
/// samples. Replayed data counts nothing.
class SimulationMetaDataFilter : public BaseFilter {
public:
    SimulationMetaDataFilter();
    ~SimulationMetaDataFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    /// Needs "clientID", "numChannels" and "frameSize"; the number of signals is that of the entries of "numChannels".
    /// Ends with reset().
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// Adds one signal of one frame to the counters.
    virtual void computeSimMetaDataImpl(const double* data, int signal);

    /// Back to the start, unless the client replays: counters to zero, each signal's time one sample before 0, so that
    /// the first frame ends at the time of its last sample.
    virtual void reset();

    /// Counters, time and, where a pacer is at work, drift rate from the board as a new object.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string framesProcessed = "framesProcessed";
    inline static const std::string samplesProcessed = "samplesProcessed";
    inline static const std::string simTime = "simTime";

protected:
    /// Writes the counters and the largest of the signals' times to the board.
    void publish();
    /// Channels of a signal, complex ones once.
    unsigned long getDataChannelCount(int signal) const;

    // State.
    RememberedClient client;
    RememberedEntry<unsigned long> framesEntry;
    RememberedEntry<unsigned long> samplesEntry;
    RememberedEntry<double> timeEntry;
    unsigned long framesProcessed_ = 0;
    unsigned long samplesProcessed_ = 0;      ///< of all signals
    std::vector<unsigned long> frameSamples;  ///< per signal, samples in the frame in hand
    std::vector<double> signalTime;           ///< per signal, time reached, seconds
};

}  // namespace dspwavedecks
