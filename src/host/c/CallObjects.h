#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
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

/// A caller's array of `rows` rows of `count` elements, whose pointer counts only if there are any. Refuses a count
/// that no array can have, such as a negative number that was turned into a size.
template <typename Element>
std::span<const Element> arrayFrom(const Element* elements, std::size_t count, const char* what, std::size_t rows = 1) {
    if (rows > 0 && count > PTRDIFF_MAX / sizeof(Element) / rows) {
        throw wavedeck::driver::DriverError("no array has " + std::to_string(count) + " elements in each of " +
                                            std::to_string(rows) + " rows");
    }
    const std::size_t total = rows * count;
    return {total == 0 ? elements : given(elements, what), total};
}

/// Refuses what was given for another number of signals than the client has.
inline void requireSignals(const wavedeck::driver::ClientFacts& facts, std::size_t numSignals) {
    if (numSignals != facts.signals.size()) {
        throw wavedeck::driver::DriverError("client \"" + facts.name + "\" has " +
                                            std::to_string(facts.signals.size()) + " signals, not " +
                                            std::to_string(numSignals));
    }
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
