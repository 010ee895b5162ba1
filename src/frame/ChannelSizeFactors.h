#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Board.h"

namespace dspwavedecks {

/// Tells the host by which factor a stage changes the channel count of each signal.
inline void storeChannelSizeFactors(const std::string& clientID, std::vector<double> factors) {
    const auto client = findClient(clientID);
    const std::lock_guard lock(client->channelSizeFactorsMutex);
    client->channelSizeFactors = std::move(factors);
}

}  // namespace dspwavedecks
