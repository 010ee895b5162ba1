#pragma once

#include "BaseOptions.h"
#include "Option.h"

/// The filters that keep a stream's time and counts.
namespace dspwavedecks::catalogue::simulationMetaData {

inline constexpr Option compiledStepSize =
    number("compiledStepSize", "0", "s", "base step of a simulation whose data is not time based");
inline constexpr Option useBlockflowSimTime =
    logical("useBlockflowSimTime", "false", "take the time from the simulation and not from the steps counted");

inline constexpr auto options =
    join(list(base::action, base::clientID, base::numChannels, base::frameSize), base::measuredChannel);
inline constexpr auto blockflowOptions = join(options, list(compiledStepSize, useBlockflowSimTime));

}  // namespace dspwavedecks::catalogue::simulationMetaData

/// The bf_simulation_pacer_filter, which answers the setup alone.
namespace dspwavedecks::catalogue::simulationPacer {

inline constexpr Option frameSize = base::frameSize.atSetup();
inline constexpr Option enableSimDriftRateThreshold =
    logical("enableSimDriftRateThreshold", "true", "switch the pacing on").atSetup();
inline constexpr Option simDriftRateThreshold =
    number("simDriftRateThreshold", "10", "%",
           "lead of the simulation over the displayed data above which it is held, of the data's time")
        .atSetup();

inline constexpr auto options =
    list(base::action, base::clientID, base::numSignals, frameSize, enableSimDriftRateThreshold, simDriftRateThreshold);

}  // namespace dspwavedecks::catalogue::simulationPacer
