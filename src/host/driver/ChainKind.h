#pragma once

#include <string>

#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// The kinds of chain. The kind decides what each stage is handed and what the strategy gets.
enum class ChainKind { Time, Spectrum, Frame, Response, BlockflowTime, BlockflowSpectrum };

/// The form of the data that a stage is handed.
enum class StageView {
    Raw,        ///< the frame as it comes: all channels without a leading block; from a simulation, with its head
    Current,    ///< what the stages ahead have made of it; ahead of them the chain's own form
    NewestLine  ///< as Current, and of a spectrogram the frequency block and the newest line of each channel
};

/// True for the kinds whose data comes from a block-diagram simulation.
constexpr bool isBlockflow(ChainKind kind) {
    return kind == ChainKind::BlockflowTime || kind == ChainKind::BlockflowSpectrum;
}

/// True for the kinds whose own form is one leading block (times, or sample positions in a frame) and the channels;
/// in the others it is the raw frame.
constexpr bool hasLeadingBlock(ChainKind kind) {
    return kind == ChainKind::Time || kind == ChainKind::Frame || kind == ChainKind::BlockflowTime;
}

/// What the stage of that factory name sees.
WAVEDECK_API StageView viewOf(const std::string& stage);

/// True when the stage is set up with, and called for, the data signals only, without the input ports behind them.
WAVEDECK_API bool takesDataSignalsOnly(const std::string& stage);

/// The kind of chain that a strategy's factory name belongs to; `anyBlockflowStage` tells a simulation's time chain
/// from a plain one, which share their strategy. Throws DriverError for a name that belongs to none.
WAVEDECK_API ChainKind chainKindOf(const std::string& strategy, bool anyBlockflowStage);

/// "time", "spectrum", ... as in messages to a person.
WAVEDECK_API const char* chainKindName(ChainKind kind);

}  // namespace wavedeck::driver
