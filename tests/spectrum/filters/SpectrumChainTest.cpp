// The spectrum chain under the driver: messages from the first frame on, over tunes, replays and size changes.

#include "DriverTest.h"
#include "FrequencyDataStrategy.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumEstimatorFilter.h"

namespace {

constexpr double sampleRate = 6400.0;
constexpr std::size_t length = 64;  // of a segment: bins 100 Hz apart

/// Two signals, one of them complex, in segments of 64 samples without a window.
struct SpectrumChain {
    SpectrumChain()
        : client(factsOf(ChainKind::Spectrum, {{"real", 1, false, 1.0 / sampleRate, 0.0, 32, false},
                                               {"complex", 2, true, 1.0 / sampleRate, 0.0, 32, false}})) {
        const PropertyList options = optionList(
            "sampleRate=6400 frequencyResolutionMethod=window-length windowLength=64 autoFFTLength=false fftLength=64 "
            "window=rectangular spectrumUnits=watts forgettingFactor=0");
        client.addStage("simulation_meta_data_filter", std::make_shared<SimulationMetaDataFilter>());
        client.addStage("spectrum_estimator_filter", std::make_shared<SpectrumEstimatorFilter>(), options);
        client.setStrategy("dsp_wavedeck_frequency_data_strategy", std::make_shared<FrequencyDataStrategy>());
        client.setup();
    }

    /// Half a segment: a cosine of amplitude 2 on bin `bin` of the first signal, a turning phasor of 1 on the second.
    void feed(double bin) {
        Values real(32);
        Values complex(64);
        for (std::size_t i = 0; i < 32; ++i, ++place) {
            const double angle = 2.0 * M_PI * bin * static_cast<double>(place) / length;
            real[i] = 2.0 * std::cos(angle);
            complex[i] = std::cos(angle);
            complex[32 + i] = std::sin(angle);
        }
        client.frame({real, complex});
    }

    Poco::JSON::Object::Ptr message() { return client.updateNow().message; }

    /// The level of a signal's only channel at a frequency.
    static double level(const Poco::JSON::Object::Ptr& message, unsigned signal, double frequency) {
        const auto channel = message->getArray("signals")->getObject(signal)->getArray("channel")->getObject(0);
        const auto frequencies = channel->getArray("frequency");
        for (unsigned k = 0; k < frequencies->size(); ++k) {
            if (frequencies->getElement<double>(k) == frequency) {
                return channel->getArray("data")->getElement<double>(k);
            }
        }
        return nan;
    }

    DeckClient client;
    std::size_t place = 0;
};

std::size_t signalsOf(const Poco::JSON::Object::Ptr& message) {
    return message->has("signals") ? message->getArray("signals")->size() : 0;
}

// A cosine of amplitude A has A^2 / 4 on either side of a centred spectrum, a phasor all of its power on one.
TEST(SpectrumChain, tellsOfToneThroughTunes) {
    SpectrumChain chain;
    chain.feed(5);
    auto message = chain.message();
    EXPECT_EQ(0u, signalsOf(message)) << "no update yet";
    chain.feed(5);
    message = chain.message();
    ASSERT_EQ(2u, signalsOf(message));
    EXPECT_NEAR(1.0, SpectrumChain::level(message, 0, 500), 1e-13);
    EXPECT_NEAR(1.0, SpectrumChain::level(message, 0, -500), 1e-13);
    EXPECT_NEAR(1.0, SpectrumChain::level(message, 1, 500), 1e-13);
    EXPECT_NEAR(0.0, SpectrumChain::level(message, 1, -500), 1e-13);
    EXPECT_NEAR(63.0 / sampleRate, message->getObject("simulation")->getValue<double>("simTime"), 1e-15);

    // A tune drops what is on display; the signals come back with the next update.
    chain.client.tune("spectrum_estimator_filter", optionList("spectrumUnits=dbw"));
    EXPECT_EQ(0u, signalsOf(chain.message()));
    chain.feed(7);
    EXPECT_EQ(0u, signalsOf(chain.message()));
    chain.feed(7);
    message = chain.message();
    ASSERT_EQ(2u, signalsOf(message));
    EXPECT_NEAR(0.0, SpectrumChain::level(message, 0, 700), 1e-12);
    EXPECT_EQ(2, message->getObject("spectrum")->getValue<int>("numUpdatesProcessed")) << "the counters go on";
    chain.client.tune("spectrum_estimator_filter", optionList("windowLength=32"));
    chain.feed(7);
    EXPECT_EQ(32, chain.message()->getObject("spectrum")->getValue<int>("segmentLength"));
}

}  // namespace
