#pragma once

#include "wavedeck/Visibility.h"

namespace wavedeck {

/// Process-wide switches.
class WAVEDECK_API WaveDeckStatics {
public:
    /// Whether messages carry performance diagnostics; off at start.
    static bool getEnableWaveDecksDiagnostics();
    static void setEnableWaveDecksDiagnostics(bool enable);
};

}  // namespace wavedeck
