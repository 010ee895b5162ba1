#include "TestSignals.h"

#include <algorithm>
#include <array>

#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

struct Kind {
    std::string_view name;
    SignalFunction (*make)(SignalDescription&, const SignalFrame&);
    bool hasComplexForm;
};

constexpr std::array<Kind, 12> kinds{{
    {"tone", makeTone, true},
    {"twotone", makeTwoTone, true},
    {"multitone", makeMultitone, true},
    {"noise", makeNoise, true},
    {"chirp", makeChirp, true},
    {"square", makeSquare, false},
    {"pulse", makePulse, false},
    {"ramp", makeRamp, false},
    {"am", makeAmplitudeModulation, true},
    {"fm", makeFrequencyModulation, true},
    {"phasenoise", makePhaseNoise, true},
    {"step", makeStep, false},
}};

}  // namespace

std::vector<std::string_view> testSignalNames() {
    std::vector<std::string_view> names;
    for (const auto& entry : kinds) {
        names.push_back(entry.name);
    }
    return names;
}

SignalFunction makeTestSignal(SignalDescription& description, const SignalFrame& frame) {
    const auto* kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const Kind& entry) { return entry.name == description.name(); });
    if (kind == kinds.end()) {
        throw UsageError("gen:" + description.name() + ": no such test signal; there are " +
                         join(testSignalNames(), " "));
    }
    if (frame.isComplex && !kind->hasComplexForm) {
        throw UsageError("gen:" + description.name() + ": has no complex form");
    }
    return kind->make(description, frame);
}

}  // namespace program
