#pragma once

#include <vector>

#include "ClientFacts.h"

namespace wavedeck::driver {

/// Throws DriverError for facts that no client can have: a name that is empty or longer than 15 characters, no signal,
/// a negative count, an odd count of raw channels of a complex signal, an input port ahead of a data signal, a negative
/// or non-finite sample time, an update rate that is not positive.
void checkFacts(const ClientFacts& facts);

/// The same for counts of raw channels and frame sizes that take the place of those of the facts, one a signal.
void checkSizes(const ClientFacts& facts, const std::vector<int>& numChannels, const std::vector<int>& frameSizes);

}  // namespace wavedeck::driver
