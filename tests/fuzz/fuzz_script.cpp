// Scripts: any text, and what its steps do to the stages.

#include <algorithm>
#include <cstdint>
#include <new>
#include <set>
#include <stdexcept>
#include <string>

#include "LimitedAllocation.h"
#include "RandomClient.h"
#include "ScriptRunner.h"
#include "UsageError.h"
#include "wavedeck/WaveDeckStatics.h"

namespace {

using program::ScriptValue;

constexpr double much = 64.0;

bool isMuch(const ScriptValue& value) {
    if (value.isList()) {
        return std::any_of(value.list().begin(), value.list().end(), isMuch);
    }
    try {
        return value.number() > much;
    } catch (const program::UsageError&) {
        return false;
    }
}

/// Scripts may ask for a million frames of as many samples, and get them; that is no fault, but takes its time.
bool asksForMuch(const ScriptValue& value) {
    static const std::set<std::string> counts{"repeat", "samples", "frameSize", "channels", "numChannels"};
    if (value.isList()) {
        return std::any_of(value.list().begin(), value.list().end(), asksForMuch);
    }
    return value.isObject() && std::any_of(value.members().begin(), value.members().end(), [](const auto& member) {
               return asksForMuch(member.second) || (counts.count(member.first) > 0 && isMuch(member.second));
           });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const auto script = program::parseScript(text);
        if (asksForMuch(script)) {
            return 0;
        }
        program::ScriptRunner runner(script, fuzz::stageLibrary());
        for (std::size_t step = 0; step < runner.numSteps(); ++step) {
            runner.run(step);
        }
    } catch (const program::UsageError&) {
    } catch (const std::bad_alloc&) {  // the client that it describes is too large
    } catch (const std::length_error&) {
    }
    wavedeck::WaveDeckStatics::setEnableWaveDecksDiagnostics(false);
    return 0;
}
