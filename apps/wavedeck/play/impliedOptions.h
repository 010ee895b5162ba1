#pragma once

#include "DeckSettings.h"

namespace program {

/// Presets what a chosen value needs to count: an RBW that it is not automatic, a limit line that it is tested.
void presetImpliedOptions(DeckSettings& settings);

/// Presets a frequency span by its ends, or by width and middle, where one of these was chosen. What was not chosen
/// follows from the frequencies that the sample rate allows. Throws UsageError for a middle beyond them.
/// lowest, highest  of these, Hz
void presetFrequencySpan(double lowest, double highest, DeckSettings& settings);

}  // namespace program
