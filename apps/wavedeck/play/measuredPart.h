#pragma once

#include <string>
#include <string_view>

#include "DeckPresets.h"
#include "DeckSettings.h"

namespace program {

/// What a measurement's channel is where its number does not tell, for people: decks of samples take a complex channel
/// for two, all real parts before all imaginary ones, and so they do with magnitude and phase.
/// stage  measures a signal and a channel, or is the trigger
/// returns for instance " (real part)" or " (not there)"; an empty text where the number tells
std::string measuredPart(const SessionFacts& facts, const DeckSettings& settings, std::string_view stage);

}  // namespace program
