#pragma once

#include <vector>

#include "AnnotationList.h"
#include "DeckSettings.h"
#include "spectralMaskStruct.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace program {

/// Where the newest spectra of a signal's channels fail the mask: one finding for each stretch of neighbouring bins of
/// which some channel fails, from half a bin below the first to half a bin above the last. Its level is by how much the
/// line is passed at most, dB. If a spectrum before the newest failed, which is gone, one over all frequencies.
std::vector<AnnotationList::Finding> findMaskFailures(const dspwavedecks::spectrumEstimatorMetaDataStruct& spectrum,
                                                      const dspwavedecks::spectralMaskStruct& mask,
                                                      const DeckSettings& settings);

}  // namespace program
