#pragma once

#include "MagPhaseFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace testsupport {

/// A buffer of times, then channels.
inline Values frameOf(const Values& times, const std::vector<std::function<double(double)>>& channels) {
    Values frame = times;
    for (const auto& channel : channels) {
        std::transform(times.begin(), times.end(), std::back_inserter(frame), channel);
    }
    return frame;
}

/// What the stage for magnitude and phase leaves on the board of a client without such signals.
inline void markNothing(const TestClient& client, double timeRange) {
    const std::size_t signals = client.numChannels.size();
    client.board().addCustomSetting(dspwavedecks::MagPhaseFilter::magPhaseData, std::vector<bool>(signals, false));
    client.board().addCustomSetting(dspwavedecks::MagPhaseFilter::timeRange, Values(signals, timeRange));
}

}  // namespace testsupport
