// The spectrum chain of a block-diagram simulation, made by the exported factories, under the driver.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "BlockflowSimulation.h"
#include "DeckClient.h"
#include "SpectrumTestSignals.h"
#include "StageLibrary.h"

namespace {

using testsupport::noise;
using wavedeck::PropertyList;
using wavedeck::driver::BlockflowSimulation;
using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::DeckClient;
using wavedeck::driver::SignalFacts;
using Buffers = std::vector<std::vector<double>>;

constexpr double sampleRate = 6400.0;

/// A client with a chain of all stages that its kind has, the measurements switched on.
class SpectrumDeck {
public:
    SpectrumDeck(ChainKind kind, std::vector<SignalFacts> signals, const PropertyList& estimatorOptions)
        : client(factsOf(kind, std::move(signals))) {
        static const wavedeck::driver::StageLibrary library(DSPWAVEDECKS_LIBRARY);
        const bool isSimulation = kind == ChainKind::BlockflowSpectrum;
        const auto add = [&](const std::string& name, const PropertyList& options = {}) {
            client.addStage(name, library.makeFilter(name), options);
        };
        add(isSimulation ? "bf_simulation_meta_data_filter" : "simulation_meta_data_filter");
        if (isSimulation) {
            add("bf_simulation_pacer_filter");
            add("bf_input_port_parameters_handler_filter", estimatorOptions);
        }
        estimator = isSimulation ? "bf_spectrum_estimator_filter" : "spectrum_estimator_filter";
        add(estimator, estimatorOptions);
        add("frequency_peak_finder_filter", PropertyList().addLogical("peakFinderEnabled", true));
        add("channel_measurements_filter", PropertyList().addLogical("channelMeasurementsEnabled", true));
        add("distortion_measurements_filter", PropertyList().addLogical("distortionMeasurementsEnabled", true));
        add("phase_noise_filter", PropertyList().addLogical("phaseNoiseEnabled", true));
        add("spectral_mask_tester_filter",
            PropertyList().addLogical("spectralMaskEnabled", true).addChar("enabledMasks", "upper"));
        if (isSimulation) {
            add("bf_spectrum_data_aggregator_filter");
        }
        const std::string strategy =
            isSimulation ? "bf_dsp_wavedeck_frequency_data_strategy" : "dsp_wavedeck_frequency_data_strategy";
        client.setStrategy(strategy, library.makeStrategy(strategy));
        client.setup();
    }

    /// The parts of a message that tell of spectra.
    std::string spectra() {
        const auto message = client.updateNow().message;
        std::ostringstream stream;
        for (const char* key : {"spectrum", "signals", "measurements", "phaseNoise"}) {
            stream << key << ' ';
            Poco::JSON::Stringifier::stringify(message->get(key), stream);
        }
        return stream.str();
    }

    static ClientFacts factsOf(ChainKind kind, std::vector<SignalFacts> signals) {
        ClientFacts facts;
        facts.name = kind == ChainKind::Spectrum ? "plain" : "simulation";
        facts.kind = kind;
        facts.signals = std::move(signals);
        return facts;
    }

    DeckClient client;
    std::string estimator;
};

/// Real signals of two channels and a complex one, in frames of that size.
std::vector<SignalFacts> dataSignals(int frameSize) {
    return {{"real", 2, false, 1.0 / sampleRate, 0.0, frameSize, false},
            {"complex", 2, true, 1.0 / sampleRate, 0.0, frameSize, false}};
}

PropertyList segmentsOf(double length) {
    PropertyList options;
    options.addDouble("sampleRate", sampleRate).addChar("frequencyResolutionMethod", "window-length");
    return options.addDouble("windowLength", length).addDouble("fftLength", length).addLogical("autoFFTLength", false);
}

// The two chains run the same code on the same samples: every figure of the message is equal to the last bit.
TEST(BFSpectrumChain, tellsTheSameAsThePlainOne) {
    const struct {
        const char* what;
        PropertyList options;
    } rows[] = {
        {"spectra", PropertyList()},
        {"overlap and hold traces", PropertyList()
                                        .addDouble("overlapPercent", 50)
                                        .addLogical("plotMaxHoldTrace", true)
                                        .addLogical("plotMinHoldTrace", true)},
        {"spectrogram", PropertyList().addLogical("showSpectrogram", true)},
        {"spectrogram of blocks of segments", PropertyList()
                                                  .addLogical("showSpectrogram", true)
                                                  .addLogical("autoTimeResolution", false)
                                                  .addDouble("timeResolution", 0.025)},
        {"filter bank, one-sided",
         PropertyList().addChar("method", "filter-bank").addChar("frequencyRange", "one-sided")},
    };
    for (const auto& row : rows) {
        for (const int frameSize : {24, 64, 160}) {  // shorter than a spectrum, as long, longer
            for (const std::size_t steps : {1u, 5u}) {
                SCOPED_TRACE(std::string(row.what) + ", " + std::to_string(steps) + " frames of " +
                             std::to_string(frameSize));
                PropertyList options = row.options;
                options.append(segmentsOf(64));
                SpectrumDeck plain(ChainKind::Spectrum, dataSignals(frameSize), options);
                SpectrumDeck simulated(ChainKind::BlockflowSpectrum, dataSignals(frameSize), options);
                const std::size_t count = 2 * steps * static_cast<std::size_t>(frameSize);
                int signalsSeen = 0;
                for (unsigned frame = 0; frame < 12; ++frame) {
                    Buffers samples = {noise(count, 2 * frame + 1), noise(count, 2 * frame + 2)};
                    plain.client.frame(samples);
                    for (auto& signal : samples) {
                        signal.insert(signal.begin(), steps, 0.0);
                    }
                    simulated.client.simulationFrame(samples);
                    const std::string expected = plain.spectra();
                    ASSERT_EQ(expected, simulated.spectra());
                    signalsSeen += expected.find("\"frequency\"") != std::string::npos ? 1 : 0;
                }
                EXPECT_LT(2, signalsSeen);
            }
        }
    }
}

/// Noise, and on ports 100 times a small number or nothing.
class RandomInput : public wavedeck::driver::SimulationInput {
public:
    RandomInput(std::vector<SignalFacts> signals, std::mt19937& random)
        : signals_(std::move(signals)), random_(random) {}

    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override {
        const std::size_t count = static_cast<std::size_t>(signals_[signal].numChannels) * frameSize;
        frame = noise(count, random_());
        if (signals_[signal].isInputPort) {
            frame.assign(random_() % 3 == 0 ? 0 : count, 100.0 * static_cast<double>(1 + random_() % 4));
        }
        return true;
    }
    void restart() override {}

private:
    std::vector<SignalFacts> signals_;
    std::mt19937& random_;
};

// Meant for the sanitizers: no order of steps, steps back, restarts, size changes, tunes and replays leaves a buffer.
TEST(BFSpectrumChain, survivesRandomLives) {
    std::mt19937 random(11);
    const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
    int withSpectra = 0;
    for (int life = 0; life < 12; ++life) {
        std::vector<SignalFacts> signals = dataSignals(32);
        const int ports = life % 4;
        for (int port = 0; port < ports; ++port) {
            signals.push_back({"port", 1, false, 32 / sampleRate, 0.0, 1, true});
        }
        PropertyList options;
        options.addDouble("sampleRate", sampleRate).addLogical("autoRBW", false).addDouble("rbw", 200);
        options.addLogical("autoVBW", false).addLogical("plotMaxHoldTrace", life % 2 == 0);
        options.addLogical("inputPortVBW", ports > 0).addLogical("inputPortRBW", ports > 1);
        options.addLogical("inputPortFrequencyVector", ports > 2).addLogical("autoFrequencyVector", ports < 3);
        options.addChar("inputDomain", life % 3 == 2 ? "frequency" : "time");
        SpectrumDeck deck(ChainKind::BlockflowSpectrum, signals, options);
        RandomInput input(signals, random);
        BlockflowSimulation simulation(deck.client, input, 20);
        for (int action = 0; action < 50; ++action) {
            const bool coin = below(2) == 0;
            const PropertyList tunes[] = {
                PropertyList().addDouble("overlapPercent", below(100)),
                PropertyList().addLogical("showSpectrogram", coin),
                PropertyList().addChar("method", coin ? "welch" : "filter-bank"),
                PropertyList().addChar("spectrumUnits", coin ? "dbfs" : "watts"),
                PropertyList().addChar("frequencyRange", coin ? "centered" : "one-sided"),
                PropertyList().addDoubles("sampleTime", {coin ? 0.0 : 32 / sampleRate}),
                PropertyList().addLogical("inputPortVBW", coin),
            };
            switch (below(10)) {
                case 0:
                    deck.client.tune(deck.estimator, tunes[below(std::size(tunes))]);
                    break;
                case 1: {
                    std::vector<int> sizes(signals.size(), 1 + below(4));
                    sizes[0] = sizes[1] = 1 + below(100);
                    simulation.setFrameSizes(sizes);
                    break;
                }
                case 2:
                    simulation.stepBack();
                    break;
                case 3:
                    below(5) == 0 ? simulation.restart(coin) : deck.client.reset();
                    break;
                case 4:
                    deck.client.setReplaying(true);
                    deck.client.replay();
                    break;
                default:
                    for (int steps = 1 + below(4); steps > 0; --steps) {
                        simulation.step();
                    }
                    simulation.deliver();
            }
            const auto message = deck.client.updateNow().message;
            withSpectra += message->has("signals") && message->getArray("signals")->size() > 0 ? 1 : 0;
        }
    }
    EXPECT_LT(150, withSpectra);
}

}  // namespace
