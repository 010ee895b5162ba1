// The message of one frame of a million points, built by the frame strategy and written by MessageText, against
// Array::add for each number and Object::stringify into a string stream. The arrays of the message before are free by
// then, as they are when it has been sent. A sample is one number, of which a point has two: its place and its value.

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "FrameDataStrategy.h"
#include "InterleavedComparison.h"
#include "MessageText.h"
#include "TestClient.h"

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;

std::vector<double> makeFrame(std::size_t points) {
    std::vector<double> frame(2 * points);
    for (std::size_t i = 0; i < points; ++i) {
        frame[i] = static_cast<double>(i) / 48000.0;
        frame[points + i] = std::sin(0.1 * static_cast<double>(i)) * std::exp(-1e-6 * static_cast<double>(i));
    }
    return frame;
}

Array::Ptr arrayOf(const double* values, std::size_t count) {
    Array::Ptr array = new Array;
    for (std::size_t i = 0; i < count; ++i) {
        array->add(values[i]);
    }
    return array;
}

/// The message of the strategy with its two long arrays made anew, number by number.
std::string plainText(const Object& example, const std::vector<double>& frame) {
    const std::size_t points = frame.size() / 2;
    Object::Ptr channel = new Object(*example.getArray("signals")->getObject(0)->getArray("channel")->getObject(0));
    channel->set("sample", arrayOf(frame.data(), points));
    channel->set("data", arrayOf(frame.data() + points, points));
    Array::Ptr channels = new Array;
    channels->add(channel);
    Object::Ptr signal = new Object(*example.getArray("signals")->getObject(0));
    signal->set("channel", channels);
    const double* const values = frame.data() + points;
    benchmark::DoNotOptimize(*std::min_element(values, values + points));
    benchmark::DoNotOptimize(*std::max_element(values, values + points));
    Array::Ptr signals = new Array;
    signals->add(signal);
    Object::Ptr message = new Object(example);
    message->set("signals", signals);
    std::ostringstream text;
    message->stringify(text);
    return text.str();
}

void frameMessage(benchmark::State& state) {
    const auto points = static_cast<std::size_t>(state.range(0));
    const std::vector<std::vector<double>> data{makeFrame(points)};
    const testsupport::TestClient client;
    dspwavedecks::FrameDataStrategy strategy;
    strategy.setClientID(client.name());
    wavedeck::driver::MessageText writer;
    Object::Ptr message;
    std::string text;
    const auto build = [&] {
        std::vector<int> numChannels{1};
        std::vector<int> numPoints{static_cast<int>(points)};
        std::vector<std::string> ids{"signal"};
        message = new Object;
        strategy.processDataAllSignals(data, 1, numChannels, numPoints, ids, message);
        text = writer.write(*message);
    };
    build();
    const Object example = *message;
    if (text != plainText(example, data[0])) {
        state.SkipWithError("the texts differ");
        return;
    }
    bench::compare(state, 2 * points, build, [&] { benchmark::DoNotOptimize(plainText(example, data[0])); });
    state.counters["times_faster"] = 1.0 / state.counters["ratio"];
}

BENCHMARK(frameMessage)->Arg(1 << 20)->Arg(1024)->UseManualTime()->MinTime(2.0);

}  // namespace
