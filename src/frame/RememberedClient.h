#pragma once

#include <boost/any.hpp>
#include <memory>
#include <string>

#include "Board.h"

namespace dspwavedecks {

/// A stage's client, for what runs with every frame: looking it up by name costs more than a short frame does. The
/// client owns its stages and outlives their frames.
///
/// A stage remembers its client at each setup. A client that has gone since is looked up again, which throws if there
/// is none of that name.
class RememberedClient {
public:
    void remember(const std::string& clientID) {
        const auto found = findClient(clientID);
        record = found;
        client = found.get();
        ++lookUps;
    }
    wavedeck::WaveDeckClientInfo& get(const std::string& clientID) {
        if (record.expired()) {
            remember(clientID);
        }
        return *client;
    }
    /// Rises with each look-up: what was remembered of the client before is to be forgotten.
    unsigned long getLookUps() const { return lookUps; }

private:
    // State.
    std::weak_ptr<wavedeck::WaveDeckClientInfo> record;
    wavedeck::WaveDeckClientInfo* client = nullptr;  ///< the same, valid as long as that has not expired
    unsigned long lookUps = 0;
};

/// An entry of that client's board, which keeps its place as long as the board is there. A key that is absent is looked
/// for again.
template <class Value>
class RememberedEntry {
public:
    /// key  must outlive this
    explicit RememberedEntry(const std::string& key) : key(&key) {}

    /// The stored value; null if the key is absent or holds another type.
    Value* find(RememberedClient& client, const std::string& clientID) {
        auto& settings = client.get(clientID).getClientSettings();
        if (entry == nullptr || lookUps != client.getLookUps()) {
            entry = settings.find(*key);
            lookUps = client.getLookUps();
        }
        return boost::any_cast<Value>(entry);
    }

private:
    // Options.
    const std::string* key;

    // State.
    boost::any* entry = nullptr;
    unsigned long lookUps = 0;  ///< of the client, when the entry was found
};

}  // namespace dspwavedecks
