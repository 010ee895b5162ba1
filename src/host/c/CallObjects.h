#pragma once

#include <string>
#include <utility>

#include "CallFailure.h"
#include "DeckClient.h"
#include "DriverError.h"
#include "MessageText.h"
#include "StageLibrary.h"
#include "wavedeck.h"

/// What the handles of the C header point to.

struct wavedeck_library {
    explicit wavedeck_library(const std::string& name) : stages(name), version(stages.version()) {}

    wavedeck::driver::StageLibrary stages;
    std::string version;
};

struct wavedeck_options {
    streamplug::interfaces::device::PropertyList list;
};

struct wavedeck_client {
    wavedeck_client(const wavedeck_library& library, wavedeck::driver::ClientFacts facts)
        : stages(library.stages), client(std::move(facts)) {}

    const wavedeck::driver::StageLibrary& stages;
    wavedeck::driver::DeckClient client;
    wavedeck::driver::MessageText message;
};

/// Refuses a null pointer: what a call that failed gave back, or a name that is missing.
template <typename Object>
Object* given(Object* object, const char* what) {
    if (object == nullptr) {
        throw wavedeck::driver::DriverError(std::string("no ") + what + " was given");
    }
    return object;
}

inline wavedeck_client* given(wavedeck_client* client) {
    return given(client, "client");
}

inline std::string nameFrom(const char* name) {
    return given(name, "name");
}

/// Runs a call without a result; 1 tells that it was done.
template <typename Call>
int done(const Call& call) {
    return guarded(0, [&] {
        call();
        return 1;
    });
}

/// A client of that kind of chain without stages, with its strategy.
wavedeck_client* makeClient(const wavedeck_library* library, wavedeck::driver::ClientFacts facts,
                            const wavedeck_signal* signals, size_t numSignals, const std::string& strategy);
