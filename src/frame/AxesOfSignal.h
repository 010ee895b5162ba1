#pragma once

#include <functional>
#include <string>

#include "Board.h"

namespace dspwavedecks {

/// Maps the id of a signal to that of the axes that show it.
using AxesOfSignal = std::function<unsigned long(const unsigned long&)>;

/// Puts the map under "WDSigIdToAxesId" for the host, if it is not there: signal k is shown by axes k, the signals past
/// the last axes by the last one. The axes are counted at each call.
inline void addAxesOfSignal(board::Settings& settings) {
    static const std::string key = "WDSigIdToAxesId";
    const board::Settings* const clientSettings = &settings;  // the board holds the map, so it lives as long
    board::addIfAbsent<AxesOfSignal>(settings, key, [clientSettings](const unsigned long& signal) {
        const unsigned long numAxes = clientSettings->axesTimeTable.size();
        return signal < numAxes || numAxes == 0 ? signal : numAxes - 1;
    });
}

}  // namespace dspwavedecks
