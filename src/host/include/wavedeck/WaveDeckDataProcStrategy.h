#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <string>
#include <vector>

#include "wavedeck/Visibility.h"

namespace wavedeck {

/// Base of the data strategies, which turn the buffers and results of one update into one client message. The order
/// of the virtual operations is the host's.
class WAVEDECK_API WaveDeckDataProcStrategy {
public:
    WaveDeckDataProcStrategy() = default;
    WaveDeckDataProcStrategy(const WaveDeckDataProcStrategy&) = delete;
    WaveDeckDataProcStrategy& operator=(const WaveDeckDataProcStrategy&) = delete;
    virtual ~WaveDeckDataProcStrategy();

    // Slots of the host's own: no strategy does anything in them.
    virtual void hostOperation1() {}
    virtual void hostOperation2() {}
    virtual void hostOperation3() {}
    virtual void hostOperation4() {}
    virtual void hostOperation5() {}

    /// Builds the client message of one update.
    /// data         one buffer a signal: block 0 (times, frequencies or sample positions), then the channels
    /// numChannels  channels in each buffer, real and imaginary parts counted separately
    /// numPoints    points a channel
    /// ids          the signals' identifiers
    /// message      filled in; must not be null
    virtual void processDataAllSignals(const std::vector<std::vector<double>>& data, int numSignals,
                                       std::vector<int>& numChannels, std::vector<int>& numPoints,
                                       std::vector<std::string>& ids, Poco::SharedPtr<Poco::JSON::Object>& message) = 0;

    virtual void hostOperation6() {}
    virtual void hostOperation7() {}

    /// Event under which a message goes out: "updateDataAsync".
    virtual std::string getUpdateEventName();
    /// Event when no data came: "onProcessNoData".
    virtual std::string getNoDataEventName();

    virtual const std::string& getEmptyUUID() { return mEmptyUUID; }
    virtual const std::vector<std::string>& getEmptyUUIDs() { return mEmptyUUIDs; }

    void setClientID(const std::string& name) { clientID = name; }

    static const std::string mEmptyUUID;
    static const std::vector<std::string> mEmptyUUIDs;

protected:
    std::string clientID;  ///< client that this strategy serves; the host tells it
};

}  // namespace wavedeck
