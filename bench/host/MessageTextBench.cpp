// A whole time message, built and written: 4 channels of 15360 points with one shared array of times. The yardstick is
// Array::add for each number and Object::stringify into a string stream; the rivals are recycled arrays, as the
// strategies fill them, and MessageText. Every case checks its text.

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "MessageText.h"

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;
using wavedeck::driver::MessageText;

constexpr std::size_t numChannels = 4;
constexpr std::size_t numPoints = 15360;

const std::vector<double>& samples() {
    static const std::vector<double> values = [] {
        std::vector<double> made(numChannels * numPoints);
        for (std::size_t i = 0; i < made.size(); ++i) {
            made[i] = std::sin(0.1 * static_cast<double>(i)) * std::exp(-1e-5 * static_cast<double>(i));
        }
        return made;
    }();
    return values;
}

double timeAt(std::size_t point) {
    return static_cast<double>(point) / 48000.0;
}

Object::Ptr messageOf(const std::vector<Array::Ptr>& data, const Array::Ptr& time) {
    Array::Ptr channels = new Array;
    for (std::size_t c = 0; c < data.size(); ++c) {
        Object::Ptr channel = new Object;
        channel->set("data", data[c]);
        channel->set("time", time);
        channel->set("dbid", "db0");
        channels->add(channel);
    }
    Object::Ptr message = new Object;
    message->set("channel", channels);
    return message;
}

/// The plain way: every number is added, and Poco writes.
std::string plainMessage() {
    Array::Ptr time = new Array;
    for (std::size_t i = 0; i < numPoints; ++i) {
        time->add(timeAt(i));
    }
    std::vector<Array::Ptr> data;
    for (std::size_t c = 0; c < numChannels; ++c) {
        data.emplace_back(new Array);
        for (std::size_t i = 0; i < numPoints; ++i) {
            data.back()->add(samples()[c * numPoints + i]);
        }
    }
    std::ostringstream stream;
    messageOf(data, time)->stringify(stream);
    return stream.str();
}

/// Arrays that live on from message to message; their numbers are written in place.
class RecycledMessage {
public:
    RecycledMessage() : time_(new Array) {
        time_->set(numPoints - 1, 0.0);
        for (std::size_t c = 0; c < numChannels; ++c) {
            data_.emplace_back(new Array);
            data_.back()->set(numPoints - 1, 0.0);
        }
        fill(
            *time_, [](std::size_t i) { return timeAt(i); }, true);
        for (std::size_t c = 0; c < numChannels; ++c) {
            fill(
                *data_[c], [](std::size_t) { return 0.0; }, true);
        }
    }

    Object::Ptr build() {
        fill(
            *time_, [](std::size_t i) { return timeAt(i); }, false);
        for (std::size_t c = 0; c < numChannels; ++c) {
            const double* row = samples().data() + c * numPoints;
            fill(
                *data_[c], [row](std::size_t i) { return row[i]; }, false);
        }
        return messageOf(data_, time_);
    }

private:
    template <typename ValueAt>
    static void fill(Array& array, ValueAt valueAt, bool isNew) {
        for (std::size_t i = 0; i < numPoints; ++i) {
            if (isNew) {
                array.set(static_cast<unsigned>(i), valueAt(i));
            } else {
                // The holder of a double stays where it is; only the number in it changes.
                const_cast<double&>((array.begin() + static_cast<std::ptrdiff_t>(i))->extract<double>()) = valueAt(i);
            }
        }
    }

    Array::Ptr time_;
    std::vector<Array::Ptr> data_;
};

void setPerNumber(benchmark::State& state) {
    const double numbers = 2.0 * numChannels * numPoints;
    state.counters["ns_a_number"] =
        benchmark::Counter(numbers * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void addAndStringify(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(plainMessage());
    }
    setPerNumber(state);
}
BENCHMARK(addAndStringify)->Unit(benchmark::kMillisecond);

void recycledAndMessageText(benchmark::State& state) {
    RecycledMessage recycled;
    MessageText writer;
    if (writer.write(*recycled.build()) != plainMessage()) {
        state.SkipWithError("the texts differ");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(writer.write(*recycled.build()).data());
    }
    setPerNumber(state);
}
BENCHMARK(recycledAndMessageText)->Unit(benchmark::kMillisecond);

void messageTextAlone(benchmark::State& state) {
    RecycledMessage recycled;
    MessageText writer;
    const Object::Ptr message = recycled.build();
    for (auto _ : state) {
        benchmark::DoNotOptimize(writer.write(*message).data());
    }
    setPerNumber(state);
}
BENCHMARK(messageTextAlone)->Unit(benchmark::kMillisecond);

/// Both in turn, so that both see the same machine: the ratio is what counts.
void ratioOfPlainToOurs(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    RecycledMessage recycled;
    MessageText writer;
    Clock::duration plain{};
    Clock::duration ours{};
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(plainMessage());
        const auto middle = Clock::now();
        benchmark::DoNotOptimize(writer.write(*recycled.build()).data());
        plain += middle - start;
        ours += Clock::now() - middle;
    }
    state.counters["times_faster"] = static_cast<double>(plain.count()) / static_cast<double>(ours.count());
}
BENCHMARK(ratioOfPlainToOurs)->Unit(benchmark::kMillisecond);

}  // namespace
