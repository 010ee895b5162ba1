#pragma once

#include "BaseOptions.h"
#include "Option.h"

namespace dspwavedecks::catalogue::magPhase {

inline constexpr Option timeRange =
    numbers("timeRange", "", "s", "displayed span of each signal, for the time measurements").fromHost();

inline constexpr auto options =
    join(list(base::action, base::clientID, base::numChannels), base::spans, list(timeRange));

}  // namespace dspwavedecks::catalogue::magPhase
