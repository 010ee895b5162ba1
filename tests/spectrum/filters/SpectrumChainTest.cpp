// The spectrum chain under the driver: messages from the first frame on, over tunes, replays and size changes.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "DeckClient.h"
#include "FrequencyDataStrategy.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumEstimatorFilter.h"
#include "SpectrumThinnerFilter.h"

namespace dspwavedecks {
namespace {

using wavedeck::PropertyList;
using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::DeckClient;

constexpr double sampleRate = 6400.0;
constexpr std::size_t length = 64;  // of a segment: bins 100 Hz apart

/// Two signals, one of them complex, in segments of 64 samples without a window.
struct SpectrumChain {
    explicit SpectrumChain(const PropertyList& more = {}) : client(facts()) {
        PropertyList options = more;
        options.addDouble("sampleRate", sampleRate).addChar("frequencyResolutionMethod", "window-length");
        options.addDouble("windowLength", length).addChar("window", "rectangular");
        options.addLogical("autoFFTLength", false).addDouble("fftLength", length);
        options.addChar("spectrumUnits", "watts").addDouble("forgettingFactor", 0);
        client.addStage("simulation_meta_data_filter", std::make_shared<SimulationMetaDataFilter>());
        client.addStage("spectrum_estimator_filter", std::make_shared<SpectrumEstimatorFilter>(), options);
        client.setStrategy("dsp_wavedeck_frequency_data_strategy", std::make_shared<FrequencyDataStrategy>());
        client.setup();
    }

    static ClientFacts facts() {
        ClientFacts facts;
        facts.name = "spectrum chain";
        facts.kind = ChainKind::Spectrum;
        facts.signals.resize(2);
        facts.signals[0].id = "real";
        facts.signals[1].id = "complex";
        facts.signals[1].numChannels = 2;
        facts.signals[1].isComplex = true;
        for (auto& signal : facts.signals) {
            signal.sampleTime = 1.0 / sampleRate;
            signal.frameSize = 32;
        }
        return facts;
    }

    /// Half a segment: a cosine of amplitude 2 on bin `bin` of the first signal, a turning phasor of 1 on the second.
    void feed(double bin) {
        std::vector<double> real(32);
        std::vector<double> complex(64);
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
        return std::nan("");
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
    chain.client.tune("spectrum_estimator_filter", PropertyList().addChar("spectrumUnits", "dbw"));
    EXPECT_EQ(0u, signalsOf(chain.message()));
    chain.feed(7);
    EXPECT_EQ(0u, signalsOf(chain.message()));
    chain.feed(7);
    message = chain.message();
    ASSERT_EQ(2u, signalsOf(message));
    EXPECT_NEAR(0.0, SpectrumChain::level(message, 0, 700), 1e-12);
    EXPECT_EQ(2, message->getObject("spectrum")->getValue<int>("numUpdatesProcessed")) << "the counters go on";
    chain.client.tune("spectrum_estimator_filter", PropertyList().addDouble("windowLength", 32));
    chain.feed(7);
    EXPECT_EQ(32, chain.message()->getObject("spectrum")->getValue<int>("segmentLength"));
}

TEST(SpectrumChain, replaysWhatItShowed) {
    SpectrumChain chain;
    chain.feed(5);
    chain.feed(5);
    const auto live = chain.message();
    chain.client.setReplaying(true);
    EXPECT_TRUE(chain.client.replay());
    const auto replayed = chain.message();
    for (const unsigned signal : {0u, 1u}) {
        for (int bin = -31; bin < 32; ++bin) {
            EXPECT_EQ(SpectrumChain::level(live, signal, 100.0 * bin),
                      SpectrumChain::level(replayed, signal, 100.0 * bin));
        }
    }
    EXPECT_EQ(1, replayed->getObject("spectrum")->getValue<int>("numUpdatesProcessed"));
    chain.feed(5);  // new data ends it
    chain.feed(5);
    EXPECT_FALSE(chain.client.isReplaying());
    EXPECT_EQ(2, chain.message()->getObject("spectrum")->getValue<int>("numUpdatesProcessed"));
}

// Meant for the sanitizers: no order of frames, tunes, setups, size changes and replays leaves a buffer.
TEST(SpectrumChain, survivesRandomLives) {
    std::mt19937 random(7);
    const auto below = [&](unsigned count) { return random() % count; };
    for (int life = 0; life < 6; ++life) {
        SpectrumChain chain(PropertyList().addLogical("plotMaxHoldTrace", life % 2 == 0));
        chain.client.addStage("spectrum_thinner_filter", std::make_shared<SpectrumThinnerFilter>(),
                              PropertyList().addDouble("numPoints", 20));
        chain.client.setup();
        std::vector<int> channels = {1, 2};
        for (int step = 0; step < 120; ++step) {
            const double amount = static_cast<double>(below(200));
            const bool coin = below(2) == 0;
            const PropertyList tunes[] = {PropertyList().addDouble("windowLength", amount),
                                          PropertyList().addDouble("overlapPercent", amount),
                                          PropertyList().addLogical("showSpectrogram", coin),
                                          PropertyList().addChar("method", coin ? "welch" : "filter-bank")};
            const auto what = below(12);
            if (what < 4) {
                chain.client.tune("spectrum_estimator_filter", tunes[what]);
            } else if (what == 4) {
                channels = {static_cast<int>(below(3)), 2 * static_cast<int>(1 + below(2))};
                chain.client.resize(channels, {32, 32});
            } else if (what == 5) {
                chain.client.setup();
            } else if (what == 6) {
                chain.client.setReplaying(true);
                chain.client.replay();
            } else {
                chain.client.frame({std::vector<double>(static_cast<std::size_t>(channels[0]) * below(150), 0.5),
                                    std::vector<double>(static_cast<std::size_t>(channels[1]) * below(150), 0.25)});
            }
            const auto message = chain.message();
            EXPECT_TRUE(message->has("spectrum"));
        }
    }
}

}  // namespace
}  // namespace dspwavedecks
