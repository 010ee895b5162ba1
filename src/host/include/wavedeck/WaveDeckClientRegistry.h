#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "wavedeck/Visibility.h"
#include "wavedeck/WaveDeckClientInfo.h"

namespace wavedeck {

/// All clients of the process by name. Locks its own adding and finding.
class WAVEDECK_API WaveDeckClientRegistry {
public:
    /// The one registry. Never destroyed: boards hold values whose code lives in the library, and stages and threads
    /// may still look clients up while the process ends.
    static WaveDeckClientRegistry& sInstance;

    /// The record of a client. Throws numbench::Exception for a name that is not registered.
    std::shared_ptr<WaveDeckClientInfo> operator()(std::string clientID) const;

    bool isClientValid(const std::string& clientID) const;

    /// Registers a client. Throws numbench::Exception if the name is taken.
    std::shared_ptr<WaveDeckClientInfo> addClient(const std::string& clientID);

    /// Forgets a client; its record lives on with those who hold it.
    void removeClient(const std::string& clientID);

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::string, std::shared_ptr<WaveDeckClientInfo>> clients_;
};

}  // namespace wavedeck
