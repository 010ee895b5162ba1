#pragma once

#include <functional>
#include <string>
#include <vector>

#include "MagPhaseFilter.h"
#include "TestClient.h"

namespace testsupport {

/// A buffer of times, then channels.
inline std::vector<double> frameOf(const std::vector<double>& times,
                                   const std::vector<std::function<double(double)>>& channels) {
    std::vector<double> frame = times;
    for (const auto& channel : channels) {
        for (const double time : times) {
            frame.push_back(channel(time));
        }
    }
    return frame;
}

/// Times first * interval, (first + 1) * interval, ...
inline std::vector<double> timesFrom(long first, std::size_t count, double interval) {
    std::vector<double> times(count);
    for (std::size_t i = 0; i < count; ++i) {
        times[i] = static_cast<double>(first + static_cast<long>(i)) * interval;
    }
    return times;
}

/// What the stage for magnitude and phase leaves on the board of a client without such signals.
inline void markNothing(const TestClient& client, double timeRange) {
    const std::size_t signals = client.numChannels.size();
    client.board().addCustomSetting(dspwavedecks::MagPhaseFilter::magPhaseData, std::vector<bool>(signals, false));
    client.board().addCustomSetting(dspwavedecks::MagPhaseFilter::timeRange, std::vector<double>(signals, timeRange));
}

}  // namespace testsupport
