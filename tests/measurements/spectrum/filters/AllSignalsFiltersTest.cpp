// Phase noise and mask tests, which cover every channel of every signal.

#include "PhaseNoiseFilter.h"
#include "SpectralMaskTesterFilter.h"
#include "SpectrumClient.h"
#include "SpectrumMeasurementQueries.h"

namespace {

using Names = std::vector<std::string>;

/// The grid 0 .. 9 Hz and channels of ten levels.
Values frame(const std::vector<Values>& channels) {
    return joined({ramp(0, 10), joined(channels)});
}

const Values carrier{-90, 0, -10, -20, -30, -40, -50, -60, -70, -80};  // at 1 Hz, 10 dB less with every hertz
const Values carrierAtEnd{-90, -90, -90, -90, -90, -90, -90, -90, -90, 0};

PhaseNoiseFilter& tuned(PhaseNoiseFilter& filter, const TestClient& client) {
    filter.tuneImpl(client.setup("phaseNoiseEnabled=true phaseNoiseFrequencyOffset=2,3.5"));
    return filter;
}

TEST(PhaseNoiseFilter, sendsCurvesOfEveryChannel) {
    SpectrumClient client(10, {1, 4});
    client->setIsComplex({0, 1});
    PhaseNoiseFilter filter;
    EXPECT_TRUE(tuned(filter, client).isActive());
    EXPECT_FALSE(PhaseNoiseFilter::isDataReady(client.name()));
    feed(filter, frame({carrier}), 0);
    EXPECT_FALSE(PhaseNoiseFilter::isDataReady(client.name()));
    Values odd = carrier;
    odd[4] = infinity * -1;
    feed(filter, frame({odd, carrierAtEnd}), 1);
    EXPECT_TRUE(PhaseNoiseFilter::isDataReady(client.name()));

    EXPECT_EQ(textOf(PhaseNoiseFilter::packageImpl(client.name(), 0, 1)),
              R"({"frequencyOffset":[[1,2,3,4,5,6,7]],"frequencyOffsetLimits":[1,7],"numSpotFrequencyOffsets":2,)"
              R"("phaseNoise":[[-10,-20,-30,-40,-50,-60,-70]],"phaseNoiseLimits":[-inf,-10],"phaseNoiseNaNIdx":[[]],)"
              R"("spotFrequencyOffset":[2,3.5],"spotPhaseNoise":[[-20,-35]]})");
    // One channel more than there are.
    EXPECT_EQ(textOf(PhaseNoiseFilter::packageImpl(client.name(), 1, 3)),
              R"({"frequencyOffset":[[1,2,3,4,5,6,7],[],[]],"frequencyOffsetLimits":[1,7],"numSpotFrequencyOffsets":2,)"
              R"("phaseNoise":[[-10,-20,0,-40,-50,-60,-70],[],[]],"phaseNoiseLimits":[-inf,-10],)"
              R"("phaseNoiseNaNIdx":[[2],[],[]],"spotFrequencyOffset":[2,3.5],"spotPhaseNoise":[[nan,nan],[],[]]})");
    EXPECT_EQ(PhaseNoiseFilter::packageImpl(client.name(), 5, 1)->getArray("phaseNoise")->size(), 1u);

    const QueryAnswer answer(answerPhaseNoise, client);
    EXPECT_EQ(answer.fields(), (Names{"SpotPhaseNoise", "FrequencyOffset", "PhaseNoise"}));
    EXPECT_EQ(nbGetRows(answer.field("PhaseNoise")), 7u);
    EXPECT_EQ(nbGetColumns(answer.field("PhaseNoise")), 3u);
    EXPECT_EQ(answer.numbers("PhaseNoise")[6], -70);
    EXPECT_EQ(answer.numbers("SpotPhaseNoise")[1], -35);
    EXPECT_TRUE(std::isnan(answer.numbers("FrequencyOffset")[14])) << "the channel without a curve";
    EXPECT_FALSE(PhaseNoiseFilter::isDataReady(client.name()));
}

TEST(PhaseNoiseFilter, answersBetweenTwoSignalsOfAPass) {
    SpectrumClient client(10, {1, 1});
    PhaseNoiseFilter filter;
    tuned(filter, client);
    for (const int signal : {0, 1}) {
        feed(filter, frame({carrierAtEnd}), signal);
    }
    filter.tuneImpl(TestClient::tune("phaseNoiseFrequencyOffset=1"));
    client.numChannels = {3, 1};
    filter.tuneImpl(client.sizeChange());
    feed(filter, frame({carrier, carrier, carrier}), 0);
    // Counts of the pass before, curves of the one under way.
    const QueryAnswer answer(answerPhaseNoise, client);
    EXPECT_EQ(nbGetRows(answer.field("PhaseNoise")), 0u);
    EXPECT_EQ(nbGetColumns(answer.field("SpotPhaseNoise")), 4u);
    EXPECT_EQ(answer.numbers("SpotPhaseNoise")[0], -10);
    EXPECT_TRUE(std::isnan(answer.numbers("SpotPhaseNoise")[1]));
    EXPECT_EQ(PhaseNoiseFilter::packageImpl(client.name(), 0, 3)->getArray("spotPhaseNoise")->getArray(0)->size(), 2u);
    feed(filter, frame({carrier}), 7);  // a signal that is not there
}

TEST(SpectralMaskTesterFilter, testsEverySignalAndCountsOverTunes) {
    SpectrumClient client(10, {1, 2});
    client.board().addCustomSetting("simTime", 2.5);
    SpectralMaskTesterFilter filter;
    filter.tuneImpl(
        client.setup("spectralMaskEnabled=true enabledMasks=upper upperMask=0,9,-5,-5 measurementSignal=1"));
    EXPECT_TRUE(filter.isActive());
    feed(filter, frame({Values(10, -6.0)}), 0);
    feed(filter, frame({Values(10, -6.0), carrier}), 1);
    EXPECT_EQ(textOf(SpectralMaskTesterFilter::packageImpl(client.name())),
              R"({"currentStatus":"failing","failingChannels":[2],"failingMasks":"Upper and lower",)"
              R"("isCurrentlyPassing":false,"lowerMaskStatus":"passing","numPassedTests":"0","numTotalTests":"1",)"
              R"("spectrumPeak":"0","successRate":"0","upperMaskStatus":"failing"})");
    EXPECT_TRUE(QueryAnswer(answerNewSpectralMask, client).isTrue());
    const QueryAnswer answer(answerSpectralMask, client);
    EXPECT_EQ(answer.fields(), (Names{"IsCurrentlyPassing", "NumPassedTests", "NumTotalTests", "SuccessRate",
                                      "FailingMasks", "FailingChannels", "SimulationTime"}));
    EXPECT_EQ(answer.numbers("FailingChannels"), (Values{3})) << "counted from 1";
    EXPECT_EQ(answer.number("SimulationTime"), 2.5);
    EXPECT_FALSE(QueryAnswer(answerNewSpectralMask, client).isTrue());

    filter.tuneImpl(TestClient::tune("customReferenceLevel=50"));
    feed(filter, frame({Values(10, -6.0)}), 0);
    feed(filter, frame({Values(10, -6.0), carrier}), 1);
    EXPECT_EQ(text(SpectralMaskTesterFilter::packageImpl(client.name()), "successRate"), "50");
    client->setIsDataSourceRepository(true);
    for (int replay = 0; replay < 3; ++replay) {
        feed(filter, frame({Values(10, -6.0)}), 0);
        feed(filter, frame({Values(10, -6.0), carrier}), 1);
    }
    EXPECT_EQ(text(SpectralMaskTesterFilter::packageImpl(client.name()), "numTotalTests"), "2");
}

TEST(SpectralMaskTesterFilter, refusesMasksThatAreNoNumbersAndFollowsChannelCounts) {
    SpectrumClient client(10, {3});
    SpectralMaskTesterFilter filter;
    filter.tuneImpl(client.setup("enabledMasks=upper-and-lower lowerMask=-100"));
    for (const char* mask : {"1,2,", "", "1,,2", "high"}) {
        EXPECT_THROW(filter.tuneImpl(TestClient::tune().addChar("upperMask", mask)), std::invalid_argument) << mask;
    }
    feed(filter, frame({carrier, carrier, carrier}));
    client.numChannels = {1};
    filter.tuneImpl(client.sizeChange());
    feed(filter, frame({carrier}));  // as many channels as the frame has, not as there were
    client.numChannels = {2};
    filter.tuneImpl(client.sizeChange());
    feed(filter, frame({carrier, Values(10, -101.0)}));
    EXPECT_EQ(client.record<spectralMaskStruct>(SpectralMaskTesterFilter::spectralMask).failingChannels,
              (std::vector<unsigned long>{1}));
    // The peak is looked for in signal 0, whichever signal is chosen.
    filter.tuneImpl(TestClient::tune("referenceLevel=spectrum-peak spectralMaskSignal=3 spectralMaskChannel=1"));
    feed(filter, frame({carrier, Values(10, -42.0)}));
    EXPECT_EQ(text(SpectralMaskTesterFilter::packageImpl(client.name()), "spectrumPeak"), "-42");
}

}  // namespace
