#pragma once

#include "Option.h"

/// What every filter is told, and the options that many filters share.
namespace dspwavedecks::catalogue::base {

inline constexpr Option action =
    text("action", "", "what the list asks for: setup, tune, onInputSizeChange or onRollback")
        .readAt(When::Always)
        .asRequired()
        .fromHost();
inline constexpr Option clientID =
    text("clientID", "", "name of the client that the stage works for").atSetup().asRequired().fromHost();
inline constexpr Option numSignals =
    wholeNumber("numSignals", "", "", "number of signals of the client").atSetup().asRequired().fromHost();
inline constexpr Option numChannels =
    integers("numChannels", "", "", "channels of each signal, real and imaginary parts counted apart")
        .readAt(When::Setup | When::SizeChange)
        .asRequired()
        .fromHost();
inline constexpr Option frameSize = integers("frameSize", "", "samples", "points of each signal in a frame")
                                        .readAt(When::Setup | When::SizeChange)
                                        .asRequired()
                                        .fromHost();
/// For filters whose setup asks for fewer facts than the size change that all have from their base.
inline constexpr Option numChannelsAtSizeChange = numChannels.readAt(When::SizeChange);
inline constexpr Option frameSizeAtSizeChange = frameSize.readAt(When::SizeChange);

inline constexpr Option measurementSignal =
    integer("measurementSignal", "0", "", "index of the signal that is measured, counted from 0");
inline constexpr Option measurementChannel =
    integer("measurementChannel", "0", "", "index of the channel that is measured, counted from 0");

inline constexpr Option magPhaseData =
    logicals("magPhaseData", "", "one mark a signal: its channels are shown, and measured, as magnitude and phase");
inline constexpr Option autoSpan = logical("autoSpan", "false", "the measured span follows the data");
inline constexpr Option customSpan =
    number("customSpan", "0", "s", "span of time that is measured at first when it does not follow the data");

/// The same three where only the setup reads them.
inline constexpr Option magPhaseDataAtSetup = magPhaseData.atSetup();
inline constexpr Option autoSpanAtSetup = autoSpan.atSetup();
inline constexpr Option customSpanAtSetup = customSpan.atSetup();

/// What the setup of most filters needs of the host.
inline constexpr auto hostFacts = list(action, clientID, numSignals, numChannels, frameSize);
inline constexpr auto measuredChannel = list(measurementSignal, measurementChannel);
/// The span options of a filter that reads them at every tune.
inline constexpr auto spans = list(magPhaseData, autoSpan, customSpan);
inline constexpr auto spansAtSetup = list(magPhaseDataAtSetup, autoSpanAtSetup, customSpanAtSetup);

}  // namespace dspwavedecks::catalogue::base
