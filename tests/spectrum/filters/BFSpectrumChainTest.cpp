// The spectrum chain of a block-diagram simulation, made by the exported factories, under the driver.

#include "DriverTest.h"
#include "SpectrumTestSignals.h"

namespace {

constexpr double sampleRate = 6400.0;

/// A client with a chain of all stages that its kind has, the measurements switched on.
class SpectrumDeck {
public:
    SpectrumDeck(ChainKind kind, std::vector<SignalFacts> signals, const PropertyList& estimatorOptions)
        : client(named(kind, std::move(signals))) {
        const bool isSimulation = kind == ChainKind::BlockflowSpectrum;
        const auto add = [&](const std::string& name, const PropertyList& options = {}) {
            client.addStage(name, stageLibrary().makeFilter(name), options);
        };
        add(isSimulation ? "bf_simulation_meta_data_filter" : "simulation_meta_data_filter");
        if (isSimulation) {
            add("bf_simulation_pacer_filter");
            add("bf_input_port_parameters_handler_filter", estimatorOptions);
        }
        add(isSimulation ? "bf_spectrum_estimator_filter" : "spectrum_estimator_filter", estimatorOptions);
        add("frequency_peak_finder_filter", optionList("peakFinderEnabled=true"));
        add("channel_measurements_filter", optionList("channelMeasurementsEnabled=true"));
        add("distortion_measurements_filter", optionList("distortionMeasurementsEnabled=true"));
        add("phase_noise_filter", optionList("phaseNoiseEnabled=true"));
        add("spectral_mask_tester_filter", optionList("spectralMaskEnabled=true enabledMasks=upper"));
        if (isSimulation) {
            add("bf_spectrum_data_aggregator_filter");
        }
        const std::string strategy =
            isSimulation ? "bf_dsp_wavedeck_frequency_data_strategy" : "dsp_wavedeck_frequency_data_strategy";
        client.setStrategy(strategy, stageLibrary().makeStrategy(strategy));
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

    /// Two decks stand side by side, each under a name of its own.
    static ClientFacts named(ChainKind kind, std::vector<SignalFacts> signals) {
        ClientFacts facts = factsOf(kind, std::move(signals));
        facts.name = isBlockflow(kind) ? "simulation" : "plain";
        return facts;
    }

    DeckClient client;
};

/// Real signals of two channels and a complex one, in frames of that size.
std::vector<SignalFacts> dataSignals(int frameSize) {
    return {{"real", 2, false, 1.0 / sampleRate, 0.0, frameSize, false},
            {"complex", 2, true, 1.0 / sampleRate, 0.0, frameSize, false}};
}

// The two chains run the same code on the same samples: every figure of the message is equal to the last bit.
TEST(BFSpectrumChain, tellsTheSameAsThePlainOne) {
    const struct {
        const char* what;
        PropertyList options;
    } rows[] = {
        {"spectra", PropertyList()},
        {"overlap and hold traces", optionList("overlapPercent=50 plotMaxHoldTrace=true plotMinHoldTrace=true")},
        {"spectrogram", optionList("showSpectrogram=true")},
        {"blocks of segments", optionList("showSpectrogram=true autoTimeResolution=false timeResolution=0.025")},
        {"filter bank, one-sided", optionList("method=filter-bank frequencyRange=one-sided")},
    };
    for (const auto& row : rows) {
        for (const int frameSize : {24, 64, 160}) {  // shorter than a spectrum, as long, longer
            for (const std::size_t steps : {1u, 5u}) {
                SCOPED_TRACE(std::string(row.what) + ", " + std::to_string(steps) + " frames of " +
                             std::to_string(frameSize));
                PropertyList options = row.options;
                options.append(
                    optionList("sampleRate=6400 frequencyResolutionMethod=window-length windowLength=64 fftLength=64 "
                               "autoFFTLength=false"));
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

}  // namespace
