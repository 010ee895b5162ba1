// The spectrum chain of a block-diagram simulation against the plain one, on the same samples under the same driver,
// with its messages: heads, ports and slots may cost a tenth.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "DeckClient.h"
#include "InterleavedComparison.h"
#include "StageLibrary.h"

namespace {

using wavedeck::driver::ChainKind;
using wavedeck::driver::DeckClient;
using Buffers = std::vector<std::vector<double>>;

constexpr double sampleRate = 1e6;
constexpr std::size_t framesARound = 64;

std::unique_ptr<DeckClient> makeClient(ChainKind kind, int frameSize, bool showSpectrogram) {
    static const wavedeck::driver::StageLibrary library(DSPWAVEDECKS_LIBRARY);
    const bool isSimulation = kind == ChainKind::BlockflowSpectrum;
    wavedeck::driver::ClientFacts facts;
    facts.name = isSimulation ? "simulation" : "plain";
    facts.kind = kind;
    facts.signals = {{"signal", 1, false, 1.0 / sampleRate, 0.0, frameSize, false}};
    auto client = std::make_unique<DeckClient>(facts);
    wavedeck::PropertyList options;
    options.addDouble("sampleRate", sampleRate).addLogical("showSpectrogram", showSpectrogram);
    const std::vector<std::string> stages =
        isSimulation ? std::vector<std::string>{"bf_simulation_meta_data_filter", "bf_simulation_pacer_filter",
                                                "bf_input_port_parameters_handler_filter",
                                                "bf_spectrum_estimator_filter", "bf_spectrum_data_aggregator_filter"}
                     : std::vector<std::string>{"simulation_meta_data_filter", "spectrum_estimator_filter"};
    for (const std::string& stage : stages) {
        client->addStage(stage, library.makeFilter(stage), options);
    }
    const std::string strategy =
        isSimulation ? "bf_dsp_wavedeck_frequency_data_strategy" : "dsp_wavedeck_frequency_data_strategy";
    client->setStrategy(strategy, library.makeStrategy(strategy));
    client->setup();
    return client;
}

/// Frames of state.range(0) points, handed over state.range(1) at a time; state.range(2): a spectrogram.
void blockflowSpectrumChain(benchmark::State& state) {
    const auto frameSize = static_cast<int>(state.range(0));
    const auto frames = static_cast<std::size_t>(state.range(1));
    const bool showSpectrogram = state.range(2) != 0;
    const auto plain = makeClient(ChainKind::Spectrum, frameSize, showSpectrogram);
    const auto simulated = makeClient(ChainKind::BlockflowSpectrum, frameSize, showSpectrogram);
    std::vector<double> samples(frames * static_cast<std::size_t>(frameSize));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<double>(i * 7919 % 1013) / 1013.0 - 0.5;
    }
    const Buffers frame = {samples};
    Buffers withHead = {std::vector<double>(frames, 0.0)};
    withHead[0].insert(withHead[0].end(), samples.begin(), samples.end());
    const double period = frameSize / sampleRate;
    double steps = 0.0;
    const auto stampHead = [&] {
        for (std::size_t i = 0; i < frames; ++i, ++steps) {
            withHead[0][i] = steps * period;
        }
    };
    bench::compare(
        state, framesARound * samples.size(),
        [&] {
            for (std::size_t i = 0; i < framesARound; ++i) {
                stampHead();
                simulated->simulationFrame(withHead);
            }
            benchmark::DoNotOptimize(simulated->update().message.get());
        },
        [&] {
            for (std::size_t i = 0; i < framesARound; ++i) {
                plain->frame(frame);
            }
            benchmark::DoNotOptimize(plain->update().message.get());
        });
}
BENCHMARK(blockflowSpectrumChain)
    ->ArgNames({"points", "frames", "spectrogram"})
    ->ArgsProduct({{256, 1024, 16384}, {1, 8}, {0, 1}})
    ->UseManualTime();

}  // namespace
