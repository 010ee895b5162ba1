#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "CallObjects.h"
#include "ChainKind.h"

using foundation::numbenchdata::ArrayFactory;

namespace {

/// Appends an option; `make` makes its array of a vector of elements.
template <typename Element, typename Value, typename Make>
int addValues(wavedeck_options* options, const char* name, const Value* values, size_t count, const Make& make) {
    return done([&] {
        std::vector<Element> elements;
        for (const Value& value : arrayFrom(values, count, "value")) {
            elements.push_back(static_cast<Element>(value));
        }
        given(options, "list of options")->list.add(nameFrom(name), make(elements));
    });
}

wavedeck::driver::SignalFacts factsOf(const wavedeck_signal& signal, size_t index) {
    wavedeck::driver::SignalFacts facts;
    facts.id = "signal" + std::to_string(index);
    facts.numChannels = signal.num_channels;
    facts.isComplex = signal.is_complex != 0;
    facts.sampleTime = signal.sample_time;
    facts.frameSize = signal.frame_size;
    facts.isInputPort = signal.is_input_port != 0;
    return facts;
}

}  // namespace

wavedeck_client* makeClient(const wavedeck_library* library, wavedeck::driver::ClientFacts facts,
                            const wavedeck_signal* signals, size_t numSignals, const std::string& strategy) {
    for (const wavedeck_signal& signal : arrayFrom(signals, numSignals, "signal")) {
        facts.signals.push_back(factsOf(signal, facts.signals.size()));
    }
    auto client = std::make_unique<wavedeck_client>(*given(library, "library"), std::move(facts));
    client->client.setStrategy(strategy, client->stages.makeStrategy(strategy));
    return client.release();
}

wavedeck_library* wavedeck_open_library(const char* name) {
    return guarded<wavedeck_library*>(nullptr, [&] { return new wavedeck_library(nameFrom(name)); });
}

const char* wavedeck_library_version(const wavedeck_library* library) {
    return library == nullptr ? "" : library->version.c_str();
}

void wavedeck_close_library(wavedeck_library* library) {
    delete library;
}

wavedeck_options* wavedeck_new_options(void) {
    return guarded<wavedeck_options*>(nullptr, [] { return new wavedeck_options; });
}

int wavedeck_add_numbers(wavedeck_options* options, const char* name, const double* values, size_t count) {
    return addValues<double>(options, name, values, count, ArrayFactory::createDouble);
}

int wavedeck_add_whole_numbers(wavedeck_options* options, const char* name, const int* values, size_t count) {
    return addValues<int>(options, name, values, count, ArrayFactory::createInt);
}

int wavedeck_add_logicals(wavedeck_options* options, const char* name, const int* values, size_t count) {
    return addValues<bool>(options, name, values, count, ArrayFactory::createLogical);
}

int wavedeck_add_text(wavedeck_options* options, const char* name, const char* value) {
    return done(
        [&] { given(options, "list of options")->list.addChar(nameFrom(name), std::string(given(value, "value"))); });
}

void wavedeck_free_options(wavedeck_options* options) {
    delete options;
}

wavedeck_client* wavedeck_new_client(const wavedeck_library* library, const char* name, const char* strategy,
                                     const wavedeck_signal* signals, size_t num_signals) {
    return guarded<wavedeck_client*>(nullptr, [&] {
        wavedeck::driver::ClientFacts facts;
        facts.name = nameFrom(name);
        facts.kind = wavedeck::driver::chainKindOf(nameFrom(strategy), false);
        return makeClient(library, std::move(facts), signals, num_signals, strategy);
    });
}

int wavedeck_add_stage(wavedeck_client* client, const char* stage, const wavedeck_options* options) {
    return done([&] {
        const std::string name = nameFrom(stage);
        auto made = given(client)->stages.makeFilter(name);
        client->client.addStage(name, std::move(made), options ? options->list : wavedeck_options{}.list);
    });
}

int wavedeck_setup(wavedeck_client* client) {
    return done([&] { given(client)->client.setup(); });
}

int wavedeck_tune(wavedeck_client* client, const char* stage, const wavedeck_options* options) {
    return done([&] { given(client)->client.tune(nameFrom(stage), given(options, "list of options")->list); });
}

int wavedeck_frame(wavedeck_client* client, const double* samples, size_t points) {
    return wavedeck_frames(client, &samples, &points, 1);
}

int wavedeck_frames(wavedeck_client* client, const double* const* samples, const size_t* points, size_t num_signals) {
    return done([&] {
        const auto facts = given(client)->client.facts();
        requireSignals(facts, num_signals);
        std::vector<std::span<const double>> frame;
        for (size_t i = 0; i < num_signals; ++i) {
            const auto channels = static_cast<size_t>(facts.signals[i].numChannels);
            frame.push_back(
                arrayFrom(given(samples, "sample")[i], given(points, "number of points")[i], "sample", channels));
        }
        client->client.frame(frame);
    });
}

const char* wavedeck_update(wavedeck_client* client) {
    return guarded<const char*>(nullptr, [&] {
        const auto update = given(client)->client.update();
        return update.message.isNull() ? "" : client->message.write(*update.message).c_str();
    });
}

nbArray* wavedeck_query(wavedeck_client* client, const char* function) {
    return guarded<nbArray*>(nullptr, [&] {
        auto results = given(client)->client.query(client->stages.query(nameFrom(function)));
        return results.empty() ? nullptr : results.front().release();
    });
}

void wavedeck_free_client(wavedeck_client* client) {
    delete client;
}
