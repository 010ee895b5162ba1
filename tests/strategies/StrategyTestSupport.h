#pragma once

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include "Board.h"
#include "SpectrumEstimatorFilter.h"
#include "Test.h"
#include "TestClient.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"

namespace testsupport {

using ObjectPointer = Poco::SharedPtr<Poco::JSON::Object>;

/// Runs one update and returns its message.
inline ObjectPointer update(wavedeck::WaveDeckDataProcStrategy& strategy, const TestClient& client,
                            const std::vector<std::vector<double>>& data, std::vector<std::string> ids = {}) {
    std::vector<int> numChannels = client.numChannels;
    std::vector<int> numPoints = client.frameSize;
    ids.resize(data.size(), "id");
    ObjectPointer message = new Poco::JSON::Object;
    strategy.setClientID(client.name());
    strategy.processDataAllSignals(data, static_cast<int>(data.size()), numChannels, numPoints, ids, message);
    return message;
}

/// The object at an index of an array member.
inline ObjectPointer at(const ObjectPointer& object, const char* key, unsigned index) {
    return object->getArray(key)->getObject(index);
}

/// The first signal of the message about one buffer.
inline ObjectPointer signalOf(wavedeck::WaveDeckDataProcStrategy& strategy, const TestClient& client,
                              const std::vector<double>& buffer) {
    return at(update(strategy, client, {buffer}), "signals", 0);
}

/// The text of a member.
inline std::string text(const ObjectPointer& object, const std::string& key) {
    std::ostringstream stream;
    Poco::JSON::Stringifier::stringify(object->get(key), stream);
    return stream.str();
}

/// Puts a record on the board, in the place of the estimator.
inline dspwavedecks::spectrumEstimatorMetaDataStruct& publish(const TestClient& client, unsigned long length) {
    using dspwavedecks::SpectrumEstimatorFilter;
    using dspwavedecks::spectrumEstimatorMetaDataStruct;
    spectrumEstimatorMetaDataStruct record;
    record.spectrumLength = length;
    client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumEstimatorMetaData, record);
    return *dspwavedecks::board::find<spectrumEstimatorMetaDataStruct>(
        client.board(), SpectrumEstimatorFilter::spectrumEstimatorMetaData);
}

/// A stage that is active and does nothing else.
class ActiveStage : public wavedeck::WaveDeckTransformImpl {};

inline void activate(const TestClient& client, const std::string& name) {
    client->setFilterImpl(name, std::make_shared<ActiveStage>());
}

}  // namespace testsupport
