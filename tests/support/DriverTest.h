#pragma once

// What tests of chains under the driver need.

#include "BlockflowSimulation.h"
#include "ChainKind.h"
#include "DeckClient.h"
#include "DriverError.h"
#include "MessageText.h"
#include "OptionText.h"
#include "StageLibrary.h"
#include "Test.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace testsupport {

using Buffers = std::vector<std::vector<double>>;

/// Facts of a client for a test.
inline wavedeck::driver::ClientFacts factsOf(wavedeck::driver::ChainKind kind,
                                             std::vector<wavedeck::driver::SignalFacts> signals) {
    wavedeck::driver::ClientFacts facts;
    facts.name = "driver test";
    facts.kind = kind;
    facts.signals = std::move(signals);
    return facts;
}

/// A signal "a" of real channels.
inline wavedeck::driver::SignalFacts realSignal(int channels, double sampleTime, int frameSize) {
    return {"a", channels, false, sampleTime, 0.0, frameSize, false};
}

#ifdef STAGE_LIBRARY
/// The measurement library, loaded once.
inline const wavedeck::driver::StageLibrary& stageLibrary() {
    static const wavedeck::driver::StageLibrary library(STAGE_LIBRARY);
    return library;
}
#endif

}  // namespace testsupport

namespace {

using namespace wavedeck::driver;
using wavedeck::PropertyList;
using wavedeck::WaveDeckClientInfo;
using wavedeck::WaveDeckClientRegistry;

}  // namespace
