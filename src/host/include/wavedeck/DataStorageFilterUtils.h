#pragma once

#include <vector>

namespace wavedeck {

/// What the host's storage filter puts on the board under "dataStorageFilterUtils".
struct DataStorageFilterUtils {
    std::vector<double> startTimeInBuffer;
    bool forceLimitBuffer = false;
    bool startTimeInBufferChanged = false;
};

}  // namespace wavedeck
