// What the driver adds to a stage's own work in a frame: a chain of 33 taps that do nothing against a chain of one. The
// difference over 32 is ns_a_stage; ns_a_frame is what a frame of the short chain costs, the forming and storing of its
// samples included.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "DeckClient.h"
#include "InterleavedComparison.h"

namespace {

using wavedeck::driver::DeckClient;

class IdleTap : public wavedeck::WaveDeckTransformImpl {
public:
    void filterImpl(const double* data, std::vector<double>&, int) override { benchmark::DoNotOptimize(data); }
};

std::unique_ptr<DeckClient> clientWith(std::size_t numStages) {
    wavedeck::driver::ClientFacts facts;
    facts.name = "stages " + std::to_string(numStages);
    facts.signals.resize(1);
    auto client = std::make_unique<DeckClient>(facts);
    for (std::size_t i = 0; i < numStages; ++i) {
        client->addStage("tap " + std::to_string(i), std::make_shared<IdleTap>());
    }
    client->setup();
    return client;
}

/// Frames of so many points of one channel.
void stageOverhead(benchmark::State& state) {
    constexpr std::size_t more = 32;
    constexpr std::size_t frames = 500;
    const auto longChain = clientWith(1 + more);
    const auto shortChain = clientWith(1);
    const std::vector<std::vector<double>> frame(1, std::vector<double>(static_cast<std::size_t>(state.range(0)), 1.0));
    const auto feed = [&](DeckClient& client) {
        for (std::size_t i = 0; i < frames; ++i) {
            client.frame(frame);
        }
    };
    bench::compare(
        state, frames, [&] { feed(*longChain); }, [&] { feed(*shortChain); });
    state.counters["ns_a_frame"] = state.counters["yardstick_ns"];
    state.counters["ns_a_stage"] = (state.counters["ns_a_sample"] - state.counters["yardstick_ns"]) / more;
}
BENCHMARK(stageOverhead)->Arg(1)->Arg(1024)->UseManualTime();

}  // namespace
