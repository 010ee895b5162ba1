#pragma once

#include "BaseOptions.h"
#include "Option.h"

/// The magnitude_phase_filter.
namespace dspwavedecks::catalogue::magPhase {

inline constexpr Option timeRange =
    numbers("timeRange", "", "s", "displayed span of each signal, for the time measurements").fromHost();

inline constexpr auto options = join(list(base::action, base::clientID, base::numChannels, base::frameSizeAtSizeChange),
                                     base::spans, list(timeRange));

}  // namespace dspwavedecks::catalogue::magPhase

/// The digital_filter_frequency_response_filter, which has no option of its own.
namespace dspwavedecks::catalogue::digitalFilterFrequencyResponse {

inline constexpr auto options =
    join(list(base::action, base::clientID, base::numSignals, base::numChannels, base::frameSizeAtSizeChange),
         base::measuredChannel);

}  // namespace dspwavedecks::catalogue::digitalFilterFrequencyResponse

/// The magnitude_phase_response_filter.
namespace dspwavedecks::catalogue::magPhaseResponse {

inline constexpr Word magnitudeDisplayWords[] = {
    {"Magnitude", 0, "as computed"},
    {"Magnitude (dB)", 1, "20 log10 of the magnitude"},
    {"Magnitude squared", 2, "the square of the magnitude"},
};

inline constexpr Option clientID = base::clientID.readAt(When::Both);
inline constexpr Option magnitudeDisplay =
    word("magnitudeDisplay", "Magnitude (dB)", magnitudeDisplayWords, "scale of the magnitude");

inline constexpr auto options =
    join(list(base::action, clientID, base::numSignals, base::numChannels, base::frameSizeAtSizeChange), base::spans,
         list(magnitudeDisplay));

}  // namespace dspwavedecks::catalogue::magPhaseResponse
