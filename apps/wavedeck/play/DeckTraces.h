#pragma once

#include <Poco/JSON/Object.h>

#include "DeckSession.h"
#include "TraceTable.h"

namespace program {

/// What a spectrum deck shows: the newest spectrum of every channel, and its hold traces that are on, each column
/// titled with unit and resolution bandwidth. Frequencies have their offsets.
TraceTable spectrumTraces(DeckSession& deck);

/// What another deck shows: the samples of its last message over time, or a response over frequency.
/// message  the last one
/// rate     Hz, of a response's filter
TraceTable messageTraces(DeckSession& deck, const Poco::JSON::Object& message, double rate);

}  // namespace program
