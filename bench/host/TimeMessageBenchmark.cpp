// An update of a time display, 4 channels of 15361 points and one shared array of times: laid out from the history by
// the driver, built by the time strategy and written by MessageText, against Array::add for each number and
// Object::stringify into a string stream, from blocks that are laid out already. A sample is one of the numbers that
// the text holds, of which the times stand in it four times.

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "DeckClient.h"
#include "InterleavedComparison.h"
#include "MagPhaseFilter.h"
#include "MessageText.h"
#include "SimulationMetaDataFilter.h"
#include "TimeDataStrategy.h"

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;
using wavedeck::driver::DeckClient;
using wavedeck::driver::MessageText;

constexpr std::size_t numChannels = 4;
constexpr std::size_t numPoints = 15361;
constexpr std::size_t numNumbers = 2 * numChannels * numPoints;
constexpr double sampleTime = 1.0 / 48000.0;

std::vector<double> makeSamples() {
    std::vector<double> samples(numChannels * numPoints);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::sin(0.1 * static_cast<double>(i)) * std::exp(-1e-5 * static_cast<double>(i));
    }
    return samples;
}

/// A client that has the samples, and a span that shows all of them.
std::unique_ptr<DeckClient> makeClient(const std::vector<double>& samples) {
    wavedeck::driver::ClientFacts facts;
    facts.name = "benchmark";
    facts.signals.resize(1);
    facts.signals[0].id = "signal";
    facts.signals[0].numChannels = numChannels;
    facts.signals[0].sampleTime = sampleTime;
    facts.displaySpan = 1.0;
    auto client = std::make_unique<DeckClient>(facts);
    client->addStage("simulation_meta_data_filter", std::make_shared<dspwavedecks::SimulationMetaDataFilter>());
    client->addStage("magnitude_phase_filter", std::make_shared<dspwavedecks::MagPhaseFilter>());
    client->setStrategy("dsp_wavedeck_time_data_strategy", std::make_shared<dspwavedecks::TimeDataStrategy>());
    client->setup();
    client->frame(std::vector<std::vector<double>>{samples});
    return client;
}

/// The same message with its long arrays made anew, number by number, and written by Poco.
std::string plainText(const Object& example, const std::vector<double>& samples) {
    const Object::Ptr exampleSignal = example.getArray("signals")->getObject(0);
    Array::Ptr times = new Array;
    for (std::size_t i = 0; i < numPoints; ++i) {
        times->add(static_cast<double>(i) * sampleTime);
    }
    Array::Ptr channels = new Array;
    for (std::size_t c = 0; c < numChannels; ++c) {
        Object::Ptr channel = new Object(*exampleSignal->getArray("channel")->getObject(static_cast<unsigned>(c)));
        Array::Ptr data = new Array;
        for (std::size_t i = 0; i < numPoints; ++i) {
            data->add(samples[c * numPoints + i]);
        }
        channel->set("data", data);
        channel->set("time", times);
        channels->add(channel);
    }
    Object::Ptr signal = new Object(*exampleSignal);
    signal->set("channel", channels);
    Array::Ptr signals = new Array;
    signals->add(signal);
    Object::Ptr message = new Object(example);
    message->set("signals", signals);
    std::ostringstream text;
    message->stringify(text);
    return text.str();
}

void timeMessage(benchmark::State& state) {
    const std::vector<double> samples = makeSamples();
    const std::unique_ptr<DeckClient> client = makeClient(samples);
    MessageText writer;
    const Object example = *client->updateNow().message;
    if (writer.write(example) != plainText(example, samples)) {
        state.SkipWithError("the texts differ");
        return;
    }
    bench::compare(
        state, numNumbers, [&] { benchmark::DoNotOptimize(writer.write(*client->updateNow().message).data()); },
        [&] { benchmark::DoNotOptimize(plainText(example, samples).data()); });
    state.counters["times_faster"] = 1.0 / state.counters["ratio"];
}
BENCHMARK(timeMessage)->UseManualTime()->MinTime(2.0);

/// The text alone, of a message that is built.
void timeMessageText(benchmark::State& state) {
    const std::vector<double> samples = makeSamples();
    const std::unique_ptr<DeckClient> client = makeClient(samples);
    const Object::Ptr message = client->updateNow().message;
    MessageText writer;
    bench::compare(
        state, numNumbers, [&] { benchmark::DoNotOptimize(writer.write(*message).data()); },
        [&] {
            std::ostringstream text;
            message->stringify(text);
            benchmark::DoNotOptimize(text.str().data());
        });
    state.counters["times_faster"] = 1.0 / state.counters["ratio"];
}
BENCHMARK(timeMessageText)->UseManualTime()->MinTime(1.0);

}  // namespace
