#include <span>
#include <string>
#include <utility>
#include <vector>

#include "CallObjects.h"
#include "ChainKind.h"

using wavedeck::driver::DriverError;

namespace {

/// The frames of a signal as stages take them: their times, then channel after channel; nothing where a port delivers
/// nothing.
std::vector<double> headOf(const wavedeck::driver::SignalFacts& signal, std::span<const double> times,
                           const double* samples) {
    if (samples == nullptr && signal.isInputPort) {
        return {};
    }
    const size_t samplesPerFrame = static_cast<size_t>(signal.numChannels) * static_cast<size_t>(signal.frameSize);
    const auto frames = arrayFrom(samples, times.size(), "sample", samplesPerFrame);
    std::vector<double> head(times.begin(), times.end());
    head.insert(head.end(), frames.begin(), frames.end());
    return head;
}

}  // namespace

wavedeck_client* wavedeck_new_simulation_client(const wavedeck_library* library, const char* name, const char* strategy,
                                                const wavedeck_signal* signals, size_t num_signals, double start_time,
                                                double stop_time) {
    return guarded<wavedeck_client*>(nullptr, [&] {
        wavedeck::driver::ClientFacts facts;
        facts.name = nameFrom(name);
        facts.kind = wavedeck::driver::chainKindOf(nameFrom(strategy), true);
        if (!wavedeck::driver::isBlockflow(facts.kind)) {
            throw DriverError("the strategy \"" + nameFrom(strategy) + "\" takes no frames of a simulation");
        }
        facts.startTime = start_time;
        facts.stopTime = stop_time;
        return makeClient(library, std::move(facts), signals, num_signals, strategy);
    });
}

int wavedeck_simulation_frames(wavedeck_client* client, const double* times, const double* const* samples,
                               size_t num_signals, size_t num_frames, int is_last) {
    return done([&] {
        const auto facts = given(client)->client.facts();
        requireSignals(facts, num_signals);
        if (num_frames == 0) {
            throw DriverError("no frame was given");
        }
        const auto frameTimes = arrayFrom(times, num_frames, "time");
        std::vector<std::vector<double>> heads;
        for (size_t i = 0; i < num_signals; ++i) {
            heads.push_back(headOf(facts.signals[i], frameTimes, given(samples, "sample")[i]));
        }
        client->client.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
            info.setSimulationTime(frameTimes.back());
            info.setSimStatus(is_last != 0 ? wavedeck::SimStatus::Ended : wavedeck::SimStatus::Running);
        });
        client->client.simulationFrame(heads);
    });
}

int wavedeck_simulation_may_go_on(wavedeck_client* client) {
    return guarded(0, [&] {
        bool goesOn = true;
        given(client)->client.withInfo(
            [&](const wavedeck::WaveDeckClientInfo& info) { goesOn = info.continueProcessing(); });
        return goesOn ? 1 : 0;
    });
}
