#pragma once

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ChainKind.h"
#include "wavedeck/AxesTimeTable.h"

namespace wavedeck::driver {

/// What a client's signal is. A complex channel is two raw channels: all real parts, then all imaginary parts.
struct SignalFacts {
    std::string id;            ///< identifier in the message; strategies of time data leave a signal without one out
    int numChannels = 1;       ///< raw channels: real and imaginary parts counted separately
    bool isComplex = false;    ///< raw channels come as pairs
    double sampleTime = 1.0;   ///< seconds
    double offset = 0.0;       ///< seconds, for display
    int frameSize = 1024;      ///< sample times a frame, of a simulation: values a channel in one simulation frame
    bool isInputPort = false;  ///< not data, but a parameter of a simulation's spectrum; such signals stand last
};

/// What a client is made from.
struct ClientFacts {
    std::string name;  ///< at most 15 characters
    ChainKind kind = ChainKind::Time;
    std::vector<SignalFacts> signals;
    bool timeBased = true;
    double startTime = 0.0;                                     ///< seconds: where the stream begins
    double stopTime = std::numeric_limits<double>::infinity();  ///< seconds: where a simulation ends
    std::optional<double> displaySpan;                          ///< seconds; by default 5000 sample times of signal 0
    std::map<unsigned long, AxesTime> axes;  ///< by default one, at the start of the stream, a display span wide
    double updatesPerSecond = 20.0;          ///< of stream time
};

}  // namespace wavedeck::driver
