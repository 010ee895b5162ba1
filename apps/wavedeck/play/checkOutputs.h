#pragma once

#include "PlayCommand.h"

namespace program {

/// Refuses outputs that would be mixed or take an input's place: two that go to one file or both to standard output,
/// and one that goes to a file that is played. Annotations may replace the metadata that they are made from. Throws
/// UsageError.
void checkOutputs(const PlayCommand& command);

}  // namespace program
