// Channel and distortion measurements, which share what they measure and how their results go out.

#include "ChannelMeasurementsFilter.h"
#include "DistortionMeasurementsFilter.h"
#include "SpectrumClient.h"
#include "SpectrumMeasurementQueries.h"

namespace {

using Names = std::vector<std::string>;

constexpr std::size_t numBins = 200;
constexpr double rbw = 20;

/// The grid 0, 10, .. Hz and two channels of levels in dBm: one flat, one with tones of known levels over a floor of
/// two levels in turn, which ends the hill of each tone at its neighbours.
Values frame(double flat) {
    Values data = joined({ramp(0, numBins, 10), Values(numBins, flat)});
    for (std::size_t k = 0; k < numBins; ++k) {
        data.push_back(k == 40 ? 0 : k == 80 ? -30 : k == 120 ? -40 : k % 2 == 0 ? -100 : -103);
    }
    return data;
}

TEST(ChannelMeasurementsFilter, measuresTheSpectrumInTheFrame) {
    SpectrumClient client(numBins, {2}, rbw);
    ChannelMeasurementsFilter filter;
    EXPECT_FALSE(filter.hostFlagB());
    filter.tuneImpl(
        client.setup("measurementChannel=0 channelMeasurementsEnabled=true measurementChannelRBW=12345 "
                     "measurementChannelStartFrequency=495 measurementChannelStopFrequency=1495"));
    EXPECT_TRUE(filter.isActive());
    EXPECT_TRUE(feed(filter, frame(-30)).empty());
    feed(filter, frame(7), 1);  // not the measured signal
    // 1000 Hz in bandwidths of 20 Hz: the estimator's, not the option's
    const double power = -30 + 10 * std::log10(50.0);
    EXPECT_NEAR(std::stod(text(ChannelMeasurementsFilter::packageImpl(client.name()), "channelPower")), power, 1e-10);
    EXPECT_TRUE(QueryAnswer(answerNewChannelMeasurements, client).isTrue());
    const QueryAnswer bandwidth(answerChannelMeasurements, client);
    EXPECT_EQ(bandwidth.fields(), (Names{"ChannelPower", "OccupiedBW", "FrequencyError"}));
    EXPECT_NEAR(bandwidth.number("ChannelPower"), power, 1e-10);
    EXPECT_NEAR(bandwidth.number("OccupiedBW"), 990, 1e-8);
    EXPECT_NEAR(bandwidth.number("FrequencyError"), 0, 1e-8);
    EXPECT_FALSE(bandwidth.isTrue(1));
    EXPECT_FALSE(QueryAnswer(answerNewChannelMeasurements, client).isTrue());

    filter.tuneImpl(TestClient::tune("channelMeasurementsType=acpr numOffsets=3 adjacentBW=100 acprOffsets=600,2000"));
    feed(filter, frame(-30));
    const auto package = ChannelMeasurementsFilter::packageImpl(client.name());
    EXPECT_EQ(package->size(), 7u);
    EXPECT_EQ(text(package, "acprLower"), text(package, "acprUpper"));
    EXPECT_NE(text(package, "acprLower").find(",nan,nan]"), std::string::npos) << text(package, "acprLower");
    const QueryAnswer ratios(answerChannelMeasurements, client);
    EXPECT_EQ(ratios.fields(), (Names{"ChannelPower", "ACPRLower", "ACPRUpper"}));
    EXPECT_NEAR(ratios.numbers("ACPRUpper")[0], -10, 1e-10);
    EXPECT_TRUE(ratios.isTrue(1));

    filter.tuneImpl(TestClient::tune().addInt("numOffsets", std::numeric_limits<int>::max()));
    feed(filter, frame(-30));
    EXPECT_EQ(QueryAnswer(answerChannelMeasurements, client).numbers("ACPRLower").size(), 1000u);
    filter.tuneImpl(TestClient::tune("numOffsets=-5"));
    feed(filter, frame(-30));
    EXPECT_EQ(QueryAnswer(answerChannelMeasurements, client).field("ACPRLower"), nullptr);
    EXPECT_THROW(filter.tuneImpl(TestClient::tune("filterShape=boxcar")), std::out_of_range);
}

TEST(ChannelMeasurementsFilter, measuresHoldTracesAndReadsNaNWithoutASpectrum) {
    SpectrumClient client(numBins, {2}, rbw);
    const Values data = frame(-30);
    ChannelMeasurementsFilter filter;
    filter.tuneImpl(
        client.setup("measurementChannel=1 normalTraceData=false measurementChannelStartFrequency=495 "
                     "measurementChannelStopFrequency=1495"));
    const auto power = [&] {
        feed(filter, data);
        return client.record<channelMeasurementsStruct>(ChannelMeasurementsFilter::channel).channelPower;
    };
    EXPECT_TRUE(std::isnan(power())) << "no trace";
    client.estimator().frequencyVector.assign(data.begin(), data.begin() + numBins);
    client.estimator().maxHoldTrace.assign(2 * numBins, -10.0);
    client.estimator().minHoldTrace.assign(2 * numBins, -50.0);
    EXPECT_NEAR(power(), -50 + 10 * std::log10(50.0), 1e-10);
    filter.tuneImpl(TestClient::tune("maxHoldTraceData=true"));
    EXPECT_NEAR(power(), -10 + 10 * std::log10(50.0), 1e-10);
    client.estimator().maxHoldTrace.pop_back();
    EXPECT_TRUE(std::isnan(power())) << "a trace that is too short";
    client.estimator().maxHoldTrace.push_back(-10);
    client.estimator().frequencyVector.pop_back();
    EXPECT_TRUE(std::isnan(power())) << "a grid that is too short";
    filter.tuneImpl(TestClient::tune("normalTraceData=true"));
    EXPECT_FALSE(std::isnan(power()));
    for (const int channel : {2, -1}) {
        filter.tuneImpl(TestClient::tune().addInt("measurementChannel", channel));
        EXPECT_TRUE(std::isnan(power())) << "channel " << channel;
    }
    filter.tuneImpl(TestClient::tune("measurementChannel=1"));
    for (const unsigned long length : {0ul, numBins + 1, 3 * numBins + 1}) {
        client.setSpectrumLength(length);
        EXPECT_TRUE(std::isnan(power())) << "length " << length;
    }
    client.setSpectrumLength(numBins);
    for (const double odd : {infinity, nan}) {
        board::write(client.board(), "rbw", odd);
        EXPECT_TRUE(std::isnan(power())) << "bandwidth " << odd;
    }
    EXPECT_EQ(text(ChannelMeasurementsFilter::packageImpl(client.name()), "channelPower"), "nan");
}

TEST(DistortionMeasurementsFilter, measuresTonesAndSendsWhatItFound) {
    SpectrumClient client(numBins, {2}, rbw);
    DistortionMeasurementsFilter filter;
    filter.tuneImpl(client.setup("measurementChannel=1 distortionMeasurementsEnabled=true numHarmonics=6"));
    EXPECT_TRUE(filter.isActive());
    feed(filter, frame(-30));
    const auto package = DistortionMeasurementsFilter::packageImpl(client.name());
    EXPECT_EQ(package->size(), 9u);
    // Orders 4 is floor and 5 and 6 lie beyond the grid: four tones of six.
    EXPECT_EQ(package->getValue<unsigned>("numHarmonics"), 4u);
    EXPECT_EQ(text(package, "frequency"), "[400,800,1200,1600]");
    EXPECT_NEAR(std::stod(text(package, "SFDR")), 30, 1e-10);
    EXPECT_TRUE(QueryAnswer(answerNewDistortionMeasurements, client).isTrue());
    const QueryAnswer harmonic(answerDistortionMeasurements, client);
    EXPECT_EQ(harmonic.fields(),
              (Names{"HarmonicNumber", "Frequency", "Power", "THD", "THDPercent", "SNR", "SINAD", "SFDR"}));
    EXPECT_EQ(harmonic.numbers("HarmonicNumber"), (Values{1, 2, 3, 4}));
    EXPECT_NEAR(harmonic.numbers("Power")[2], -40, 1e-10);
    EXPECT_NEAR(harmonic.number("THD"), 10 * std::log10(1e-3 + 1e-4 + 1e-10), 1e-10);
    EXPECT_TRUE(harmonic.isTrue(1));
    EXPECT_FALSE(QueryAnswer(answerNewDistortionMeasurements, client).isTrue());

    filter.tuneImpl(TestClient::tune("distortionType=intermodulation"));
    feed(filter, frame(-30));
    // Tones at 400 and 800 Hz: the lower product would be at 0 Hz, which is wiped, the upper one is the tone at 1200
    // Hz.
    const QueryAnswer imod(answerDistortionMeasurements, client);
    EXPECT_EQ(imod.fields(), (Names{"Frequency", "Power", "TOI"}));
    EXPECT_NEAR(imod.numbers("Power")[3], -40, 1e-10);
    EXPECT_FALSE(imod.isTrue(1));
    EXPECT_NE(text(DistortionMeasurementsFilter::packageImpl(client.name()), "TOI"), "0");

    filter.tuneImpl(TestClient::tune("numHarmonics=-1 measurementChannel=3 distortionType=harmonic"));
    feed(filter, frame(-30));
    EXPECT_EQ(text(DistortionMeasurementsFilter::packageImpl(client.name()), "SNR"), "nan");
    EXPECT_EQ(text(DistortionMeasurementsFilter::packageImpl(client.name()), "frequency"), "[]");
}

}  // namespace
