#pragma once

#include <cstddef>
#include <map>

#include "wavedeck/Visibility.h"

namespace wavedeck {

/// What the display shows on one set of axes.
struct AxesTime {
    double startTime = 0.0;      ///< seconds, left end of the axes
    double timeSpan = 0.0;       ///< seconds shown
    unsigned long axesFlag = 0;  ///< non-zero: the host drives this axes' span from elsewhere
};

/// The per-axes table of the client settings, keyed by axes id. Reading an id that is not there gives zeros and adds
/// nothing, so that size() stays the number of axes.
class WAVEDECK_API AxesTimeTable {
public:
    AxesTime operator[](unsigned long axesId) const;
    void set(unsigned long axesId, const AxesTime& entry) { entries_[axesId] = entry; }
    void clear() { entries_.clear(); }
    std::size_t size() const { return entries_.size(); }

private:
    std::map<unsigned long, AxesTime> entries_;
};

}  // namespace wavedeck
