// What the driver adds to a stage's own work in a frame: chains of taps that do nothing, one against many. The
// difference a stage is the overhead that counts_a_stage reports.

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "DeckClient.h"

namespace {

using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::DeckClient;

class IdleTap : public wavedeck::WaveDeckTransformImpl {
public:
    void filterImpl(const double* data, std::vector<double>&, int) override { benchmark::DoNotOptimize(data); }
};

std::unique_ptr<DeckClient> clientWith(std::size_t numStages, ChainKind kind) {
    ClientFacts facts;
    facts.name = "bench" + std::to_string(numStages);
    facts.kind = kind;
    facts.signals.resize(1);
    auto client = std::make_unique<DeckClient>(facts);
    for (std::size_t i = 0; i < numStages; ++i) {
        client->addStage("tap" + std::to_string(i), std::make_shared<IdleTap>());
    }
    client->setup();
    return client;
}

double nanosecondsAFrame(DeckClient& client, const std::vector<std::vector<double>>& frame) {
    using Clock = std::chrono::steady_clock;
    constexpr int frames = 2000;
    const auto start = Clock::now();
    for (int i = 0; i < frames; ++i) {
        client.frame(frame);
    }
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / frames;
}

/// Frames of `state.range(0)` points of one channel.
void stageOverhead(benchmark::State& state) {
    constexpr std::size_t many = 32;
    const auto one = clientWith(1, ChainKind::Time);
    const auto all = clientWith(many + 1, ChainKind::Time);
    const std::vector<std::vector<double>> frame(1, std::vector<double>(static_cast<std::size_t>(state.range(0)), 1.0));
    double difference = 0.0;
    double base = 0.0;
    for (auto _ : state) {
        const double single = nanosecondsAFrame(*one, frame);
        base += single;
        difference += nanosecondsAFrame(*all, frame) - single;
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["ns_a_stage"] = difference / rounds / many;
    state.counters["ns_a_frame_with_one_stage"] = base / rounds;
}
BENCHMARK(stageOverhead)->Arg(1)->Arg(1024)->Unit(benchmark::kMillisecond);

}  // namespace
