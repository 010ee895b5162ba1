#pragma once

#include <optional>

#include "Board.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace dspwavedecks {

/// What the spectrum estimator of a client leaves on the settings board for the measurements behind it.
namespace publishedSpectrum {

/// Points of one channel's spectrum; 0 before there is one.
unsigned long length(const board::Settings& settings);

/// Resolution bandwidth of the last update, Hz; nothing for a client without an estimator.
std::optional<double> rbw(const board::Settings& settings);

/// The estimator's record, with grid and hold traces; null if there is none.
const spectrumEstimatorMetaDataStruct* record(const board::Settings& settings);

}  // namespace publishedSpectrum

}  // namespace dspwavedecks
