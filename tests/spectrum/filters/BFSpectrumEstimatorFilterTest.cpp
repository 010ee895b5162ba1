#include "BFSpectrumEstimatorFilter.h"

#include "BFInputPortParametersHandlerFilter.h"
#include "SpectrumFilterTestSupport.h"
#include "Test.h"
#include "foundation/numbenchdata/Array.h"

namespace {

/// A frame in head form: times, then values.
Values withHead(std::size_t times, const Values& values) {
    return joined({Values(times, 1e6), values});
}

PropertyList plain(PropertyList list) {
    return list.append(optionList("sampleRate=6400 window=rectangular forgettingFactor=0 frequencyRange=one-sided"));
}

/// An estimator of a simulation, set up with these options.
struct Rig {
    Rig(std::vector<int> channels, std::vector<int> sizes) : client(std::move(channels)) {
        client->setUsingStreamPlugInBF(true);
        client.frameSize = std::move(sizes);
    }
    PropertyList setup(const std::string& options = "") const { return plain(client.setup(options)); }

    TestClient client;
    BFSpectrumEstimatorFilter filter;
};

TEST(BFSpectrumEstimatorFilter, takesParametersFromPortsThatNeverReachTheEstimator) {
    Rig rig({1, 1, 1, 1}, {16, 16, 1, 1});
    BFInputPortParametersHandlerFilter ports;
    const PropertyList setup =
        rig.setup("autoRBW=false autoVBW=false averagingMethod=vbw inputPortRBW=true inputPortVBW=true");
    ports.tuneImpl(setup);
    rig.filter.tuneImpl(setup);
    EXPECT_EQ(2, rig.filter.getNumDataSignals());
    const auto run = [&](const Values& rbw, const Values& vbw) {
        const Values frames[] = {withHead(1, noise(16)), withHead(1, noise(16)), rbw, vbw};
        for (int signal = 0; signal < 4; ++signal) {
            feed(ports, frames[signal], signal);
        }
        std::size_t outputs = 0;
        for (int signal = 0; signal < 4; ++signal) {
            outputs += feed(rig.filter, frames[signal], signal).empty() ? 0 : 1;
        }
        return outputs;
    };
    const Values nothing;
    EXPECT_EQ(0u, run({0, 200}, {0, 5}));
    EXPECT_EQ(32u, record(rig.client).segmentLength);
    EXPECT_EQ(5.0, record(rig.client).vbw);
    EXPECT_EQ((std::vector<int>{1, 1}), record(rig.client).numChannels);
    // Ports that go on saying the same, or fall silent, hold nothing up.
    EXPECT_EQ(2u, run({1, 200}, {1, 5}));
    EXPECT_EQ(0u, run(nothing, nothing));
    EXPECT_EQ(record(rig.client).transientRBW, SpectrumEstimatorFilter::getRBW(rig.client.name()));
    EXPECT_EQ(2u, run(nothing, nothing));
    EXPECT_EQ(2u, record(rig.client).numUpdatesProcessed);
    EXPECT_EQ(0u, run({4, 400}, {4, 7}) % 2);
    EXPECT_EQ(16u, record(rig.client).segmentLength);
    EXPECT_EQ(7.0, record(rig.client).vbw);
    // Another number of data signals is another layout.
    rig.filter.tuneImpl(TestClient::tune("inputPortVBW=false"));
    run(nothing, {0, 5});
    EXPECT_EQ((std::vector<int>{1, 1, 1}), record(rig.client).numChannels);
}

TEST(BFSpectrumEstimatorFilter, followsAGridFromAPort) {
    Rig rig({1, 1}, {3, 3});
    BFInputPortParametersHandlerFilter ports;
    const PropertyList setup = rig.setup()
                                   .addChar("inputDomain", "frequency")
                                   .addLogical("autoFrequencyVector", false)
                                   .addLogical("inputPortFrequencyVector", true)
                                   .addLogical("plotMaxHoldTrace", true);
    ports.tuneImpl(setup);
    rig.filter.tuneImpl(setup);
    const struct {
        std::vector<double> grid;
        double level;
        bool isLinear;
        double step;
    } rows[] = {{{0, 10, 20}, -7, true, 10}, {{0, 1, 20}, -6, false, 1}, {{0, 1, 20}, -5, false, 1}};
    for (const auto& row : rows) {
        feed(ports, withHead(1, row.grid), 1);
        feed(rig.filter, withHead(1, {row.level, row.level, row.level}), 0);
        EXPECT_EQ(row.grid, record(rig.client).frequencyVector);
        EXPECT_EQ(row.isLinear, record(rig.client).linearFrequencyVector);
        EXPECT_EQ(row.step, record(rig.client).minDeltaF);
        EXPECT_EQ(std::vector<double>(3, row.level), record(rig.client).maxHoldTrace) << "the trace goes on";
    }
    EXPECT_EQ(3u, record(rig.client).numUpdatesProcessed);
}

// The range that the first frame shows is the full scale of all that follow: as if it had been told.
TEST(BFSpectrumEstimatorFilter, measuresTheFullScaleInTheFirstFrame) {
    const struct {
        const char* what;
        bool isComplex;
        const char16_t* dataType;
        Values first;
        double range;
    } rows[] = {
        {"silence", false, u"double", {0, 0, 0, 0}, 1},
        {"the largest value, not magnitude", false, u"single", {1, -9, 2, 1}, 2},
        {"all below zero", false, u"double", {-4, -9, -3, -5}, 1},
        {"what is no number", false, u"double", {nan, 3, nan, 1}, 3},
        {"nothing but that", false, u"double", {nan, nan, nan, nan}, 1},
        {"a magnitude", true, u"double", {1, 3, 9, -4}, std::sqrt(82.0)},
        {"whole numbers", false, u"int16", {7, 7, 7, 7}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Rig rig({row.isComplex ? 2 : 1}, {row.isComplex ? 2 : 4});
        rig.client->setIsComplex({row.isComplex ? 1 : 0});
        const auto types = foundation::numbenchdata::ArrayFactory::createString({std::u16string(row.dataType)});
        const PropertyList setup = rig.setup("spectrumUnits=dbfs").add("inputDataType", types);
        rig.filter.tuneImpl(setup);
        feed(rig.filter, withHead(1, row.first));
        TestClient other(rig.client.numChannels, "other");
        other->setIsComplex({row.isComplex ? 1 : 0});
        SpectrumEstimatorFilter told;
        told.tuneImpl(plain(other.setup("spectrumUnits=dbfs")).addDoubles("inputRange", {row.range}));
        feed(told, row.first);
        // Averages begin anew, without what is no number.
        rig.filter.tuneImpl(TestClient::tune("forgettingFactor=0.5"));
        told.tuneImpl(TestClient::tune("forgettingFactor=0.5"));
        for (const std::uint64_t seed : {1u, 2u}) {
            const Values samples = noise(8192, seed);
            const auto expected = feed(told, samples);
            rig.client.frameSize = {static_cast<int>(samples.size()) / rig.client.numChannels[0]};
            rig.filter.tuneImpl(rig.client.sizeChange());
            ASSERT_FALSE(expected.empty());
            const auto seen = feed(rig.filter, withHead(1, samples));
            EXPECT_EQ(expected, seen);
        }
    }
}

TEST(BFSpectrumEstimatorFilter, takesANewFrameSizeForANewSampleRate) {
    Rig rig({1}, {64});
    rig.filter.tuneImpl(rig.setup("defaultSegmentLength=64 sampleTime=0.01"));
    feed(rig.filter, withHead(1, noise(64)));
    const auto length = static_cast<int>(record(rig.client).segmentLength);
    ASSERT_EQ(128, length);
    rig.client.frameSize = {32};
    rig.filter.tuneImpl(rig.client.sizeChange());
    EXPECT_TRUE(feed(rig.filter, withHead(1, noise(32))).empty());
    EXPECT_EQ(3200.0, record(rig.client).sampleRate);
    EXPECT_EQ(128u, record(rig.client).segmentLength);
    EXPECT_FALSE(feed(rig.filter, withHead(1, noise(32))).empty()) << "the samples held were kept";
    // Two simulation frames in one.
    EXPECT_EQ(0u, feed(rig.filter, withHead(2, noise(64))).size());
    EXPECT_NE(0u, feed(rig.filter, withHead(2, noise(64))).size());
    for (const Values& noRate : {Values{0.0}, {}, {-1.0}}) {
        rig.filter.tuneImpl(TestClient::tune().addDoubles("sampleTime", noRate));
        rig.client.frameSize = {16};
        rig.filter.tuneImpl(rig.client.sizeChange());
        feed(rig.filter, withHead(1, noise(16)));
        EXPECT_EQ(3200.0, record(rig.client).sampleRate);
    }
}

TEST(BFSpectrumEstimatorFilter, publishesNothingWithoutData) {
    Rig rig({1, 0}, {64, 64});
    rig.filter.tuneImpl(rig.setup("defaultSegmentLength=16"));
    EXPECT_TRUE(feed(rig.filter, {0.0}, 1).empty()) << "no channels";
    EXPECT_TRUE(feed(rig.filter, {}, 0).empty());
    EXPECT_TRUE(feed(rig.filter, withHead(1, noise(64)), 2).empty()) << "no such signal";
    EXPECT_EQ(0u, record(rig.client).spectrumLength);
    rig.client.frameSize = {0, 0};
    rig.filter.tuneImpl(rig.client.sizeChange());
    EXPECT_TRUE(feed(rig.filter, noise(64), 0).empty()) << "a frame size of 0 makes all of it a head";
    // Without the plug-in layer there is no head.
    rig.client->setUsingStreamPlugInBF(false);
    EXPECT_FALSE(feed(rig.filter, noise(64), 0).empty());
    wavedeck::WaveDeckClientRegistry::sInstance.removeClient(rig.client.name());
    EXPECT_TRUE(feed(rig.filter, noise(64), 0).empty()) << "the client has gone";
}

}  // namespace
