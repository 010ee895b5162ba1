#include "FactsCheck.h"

#include <cmath>
#include <cstddef>
#include <string>

#include "DriverError.h"

namespace wavedeck::driver {

namespace {

constexpr std::size_t longestName = 15;

bool isPositive(double value) {
    return std::isfinite(value) && value > 0.0;
}

void checkSignal(const SignalFacts& signal, const std::string& place) {
    if (signal.numChannels < 0 || (signal.isComplex && signal.numChannels % 2 != 0)) {
        throw DriverError(place + " cannot have " + std::to_string(signal.numChannels) + " raw channels");
    }
    if (signal.frameSize < 0) {
        throw DriverError(place + " cannot have a frame size of " + std::to_string(signal.frameSize));
    }
    if (!std::isfinite(signal.sampleTime) || signal.sampleTime < 0.0) {
        throw DriverError(place + " cannot have a sample time of " + std::to_string(signal.sampleTime) + " s");
    }
}

}  // namespace

void checkFacts(const ClientFacts& facts) {
    if (facts.name.empty() || facts.name.size() > longestName) {
        throw DriverError("a client's name has 1 to 15 characters: \"" + facts.name + "\"");
    }
    if (facts.signals.empty()) {
        throw DriverError("client \"" + facts.name + "\" has no signal");
    }
    if (!isPositive(facts.updatesPerSecond)) {
        throw DriverError("client \"" + facts.name + "\" needs a positive number of updates a second");
    }
    bool anyPort = false;
    for (std::size_t s = 0; s < facts.signals.size(); ++s) {
        const std::string place = "signal " + std::to_string(s) + " of client \"" + facts.name + "\"";
        checkSignal(facts.signals[s], place);
        if (anyPort && !facts.signals[s].isInputPort) {
            throw DriverError(place + " stands behind an input port");
        }
        anyPort = anyPort || facts.signals[s].isInputPort;
    }
}

void checkSizes(const ClientFacts& facts, const std::vector<int>& numChannels, const std::vector<int>& frameSizes) {
    const std::size_t count = facts.signals.size();
    if (numChannels.size() != count || frameSizes.size() != count) {
        throw DriverError("client \"" + facts.name + "\" has " + std::to_string(count) +
                          " signals: a size change names the channels and the frame size of each");
    }
    for (std::size_t s = 0; s < count; ++s) {
        SignalFacts signal = facts.signals[s];
        signal.numChannels = numChannels[s];
        signal.frameSize = frameSizes[s];
        checkSignal(signal, "signal " + std::to_string(s) + " of client \"" + facts.name + "\"");
    }
}

}  // namespace wavedeck::driver
