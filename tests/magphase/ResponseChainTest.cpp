// The response chain as the host runs it: stages by name from the library, coefficients in, client messages out.

#include "DriverTest.h"
#include "StrategyTestSupport.h"

namespace {

struct ResponseClient {
    ResponseClient() : deck(factsOf(ChainKind::Response, {realSignal(1, 1.0, 2)})) {
        for (const char* name : {"simulation_meta_data_filter", "digital_filter_frequency_response_filter",
                                 "magnitude_phase_response_filter", "peak_finder_filter"}) {
            deck.addStage(name, stageLibrary().makeFilter(name));
        }
        const std::string strategy = "magnitude_phase_response_data_strategy";
        deck.setStrategy(strategy, stageLibrary().makeStrategy(strategy));
        deck.setup();
    }

    /// The message that the coefficients give.
    ObjectPointer update(const Values& coefficients) {
        deck.frame(std::vector<Values>{coefficients});
        return deck.updateNow().message;
    }
    /// Its signal 0.
    ObjectPointer respond(const Values& coefficients) { return at(update(coefficients), "signals", 0); }

    DeckClient deck;
};

double valueAt(const ObjectPointer& signal, unsigned channel, const char* key, unsigned point) {
    return at(signal, "channel", channel)->getArray(key)->getElement<double>(point);
}

TEST(ResponseChain, TurnsCoefficientsIntoAMessage) {
    ResponseClient client;
    const ObjectPointer mean = client.respond({0.5, 0.5});
    EXPECT_EQ(mean->getValue<int>("numChannels"), 2);
    EXPECT_EQ(at(mean, "channel", 0)->getArray("data")->size(), 2048U);
    for (const unsigned point : {0U, 100U, 1000U, 2046U}) {
        const double f = valueAt(mean, 0, "sample", point);
        EXPECT_NEAR(f, 22050.0 * point / 2047.0, 1e-9);
        EXPECT_NEAR(valueAt(mean, 0, "data", point), 20.0 * std::log10(std::cos(std::numbers::pi * f / 44100.0)),
                    1e-10);
        EXPECT_NEAR(valueAt(mean, 1, "data", point), -180.0 * f / 44100.0, 1e-10);
    }

    client.deck.tune("magnitude_phase_response_filter", optionList("magnitudeDisplay=Magnitude"));
    client.deck.resizeFrames({3});
    const ObjectPointer sum = client.respond({1.0, 2.0, 3.0});
    EXPECT_EQ(at(sum, "channel", 0)->getArray("data")->size(), 2048U);
    EXPECT_NEAR(valueAt(sum, 0, "data", 0), 6.0, 1e-14);
    EXPECT_NEAR(valueAt(sum, 0, "data", 2047), 2.0, 1e-14);
    EXPECT_EQ(sum->getValue<std::string>("dataMax").substr(0, 3), "[6,");
}

/// The mean of eight has its zeros at multiples of an eighth of the sample rate and a sidelobe between each two.
TEST(ResponseChain, TellsThePeaksOfTheMagnitude) {
    ResponseClient client;
    const Values mean(8, 0.125);
    EXPECT_FALSE(client.update(mean)->getObject("measurements")->has("peaks"));
    client.deck.tune("magnitude_phase_response_filter", optionList("magnitudeDisplay=Magnitude"));
    client.deck.tune("peak_finder_filter", optionList("peakFinderEnabled=true numPeaks=2"));
    const ObjectPointer peaks = client.update(mean)->getObject("measurements")->getObject("peaks");
    EXPECT_EQ(peaks->getValue<int>("numPeaks"), 2);
    const auto first = [&](const char* key) { return std::stod(peaks->getValue<std::string>(key).substr(1)); };
    const auto dirichlet = [](double turns) {
        return std::abs(std::sin(8.0 * std::numbers::pi * turns) / (8.0 * std::sin(std::numbers::pi * turns)));
    };
    const double place = first("locations");
    // The largest sidelobe stands at 0.17975 of the sample rate; half a point is as near as the grid gets.
    EXPECT_NEAR(place / 2047.0, 0.3595, 0.5 / 2047.0);
    EXPECT_NEAR(first("peaks"), dirichlet(place / 2047.0 / 2.0), 1e-14);
}

TEST(ResponseChain, KeepsTheLastResponseWhenAFrameHasNone) {
    ResponseClient client;
    client.respond({2.0, 2.0});
    const ObjectPointer kept = client.respond({});
    EXPECT_NEAR(valueAt(kept, 0, "data", 0), 20.0 * std::log10(4.0), 1e-12);
}

}  // namespace
