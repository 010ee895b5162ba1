#include "DigitalFilterFrequencyResponseFilter.h"
#include "MagPhaseResponseFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace {

PropertyList tuneOf(const TestClient& client) {
    return TestClient::tune().addChar("clientID", client.name());
}

TEST(DigitalFilterFrequencyResponseFilter, TakesAFrameAsCoefficients) {
    TestClient client;
    DigitalFilterFrequencyResponseFilter filter;
    filter.tuneImpl(client.setup());
    EXPECT_TRUE(filter.isActive() && !filter.isReadOnly() && filter.changesChannelSize());
    EXPECT_EQ(client->channelSizeFactors, Values{1.0});

    const Values out = feed(filter, {0.5, 0.5});
    ASSERT_EQ(out.size(), 3U * 2048);
    EXPECT_EQ(out[0], 0.0);
    EXPECT_EQ(out[2047], 22050.0);
    EXPECT_EQ(out[2048], 1.0);
    EXPECT_NEAR(std::hypot(out[2048 + 2047], out[2 * 2048 + 2047]), 0.0, 1e-15);
    const double angle = std::numbers::pi * out[1000] / 44100.0;  // half of a sample's
    EXPECT_NEAR(out[2048 + 1000], std::cos(angle) * std::cos(angle), 1e-15);
    EXPECT_NEAR(out[2 * 2048 + 1000], -std::cos(angle) * std::sin(angle), 1e-15);

    EXPECT_EQ(feed(filter, {0.25})[2048], 0.25);  // not what is left of the frame before
}

TEST(DigitalFilterFrequencyResponseFilter, UsesTheFirstChannelOnly) {
    TestClient client({2});
    client->setIsComplex({1});
    DigitalFilterFrequencyResponseFilter filter;
    filter.tuneImpl(client.setup());
    EXPECT_EQ(feed(filter, {1.0, 2.0, 3.0, 100.0, 100.0, 100.0})[2048], 6.0);
    EXPECT_EQ(feed(filter, {1.0, 2.0, 100.0})[2048], 1.0);  // a rest that is no whole channel
}

TEST(DigitalFilterFrequencyResponseFilter, LeavesOtherFramesAlone) {
    TestClient client({1, 1});
    const Values frame{1.0, 2.0};
    const Values before{7.0};
    const auto expectIgnored = [&](BaseFilter& filter, const double* data, unsigned long length, int signal) {
        Values out = before;
        filter.setInputLength(length);
        filter.filterImpl(data, out, signal);
        EXPECT_EQ(out, before);
    };
    DigitalFilterFrequencyResponseFilter two;
    two.tuneImpl(client.setup());
    expectIgnored(two, frame.data(), 2, 0);  // more signals than one

    client.numChannels = {3};
    DigitalFilterFrequencyResponseFilter one;
    one.tuneImpl(client.setup());
    expectIgnored(one, frame.data(), 2, 1);
    expectIgnored(one, frame.data(), 2, 0);  // fewer values than channels
    expectIgnored(one, frame.data(), 0, 0);
    expectIgnored(one, nullptr, 2, 0);

    client.numChannels = {0};
    one.tuneImpl(client.setup());
    expectIgnored(one, frame.data(), 0, 0);
    EXPECT_EQ(feed(one, {4.0, 5.0})[2048], 4.0);
}

class MagPhaseResponse : public testing::Test {
protected:
    MagPhaseResponse() { filter.tuneImpl(client.setup()); }
    void show(const std::string& scale) { filter.tuneImpl(tuneOf(client).addChar("magnitudeDisplay", scale)); }

    TestClient client;
    MagPhaseResponseFilter filter;
};

TEST_F(MagPhaseResponse, ShowsThreeScales) {
    const Values frame{10.0, 20.0, 30.0, 0.0, 1.0, -3.0, 0.0, 0.0, 0.0};
    const double floor = 20.0 * std::log10(std::numeric_limits<double>::denorm_min());
    const struct {
        const char* scale;
        Values magnitudes;
    } rows[] = {
        {"Magnitude (dB)", {floor, 0.0, 20.0 * std::log10(3.0)}},
        {"Magnitude", {0.0, 1.0, 3.0}},
        {"Magnitude squared", {0.0, 1.0, 9.0}},
        {"Magnitude (dB)", {floor, 0.0, 20.0 * std::log10(3.0)}},
        {"no such scale", {0.0, 1.0, 3.0}},
    };
    EXPECT_EQ(feed(filter, frame)[4], 0.0);  // decibels from the start
    for (const auto& row : rows) {
        show(row.scale);
        expectValues(feed(filter, frame), joined({part(frame, 0, 3), row.magnitudes, {0.0, 0.0, 180.0}}), 4e-14);
    }
}

TEST_F(MagPhaseResponse, CountsRealSignalsTwiceAlsoAfterASizeChange) {
    TestClient mixed({1, 2}, "mixed");
    mixed->setIsComplex({0, 1});
    filter.tuneImpl(mixed.setup());
    const Values frame{1.0, 2.0, 3.0, 0.0, 0.0, 4.0};  // 3 + 0j and 0 + 4j at 1 and 2
    filter.tuneImpl(TestClient::tune("clientID=mixed magnitudeDisplay=Magnitude"));
    const Values expected{1.0, 2.0, 3.0, 4.0, 0.0, 90.0};
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(feed(filter, frame, 0), expected);
        EXPECT_EQ(feed(filter, frame, 1), expected);
        filter.tuneImpl(mixed.sizeChange());
    }
    EXPECT_EQ(mixed->channelSizeFactors, (std::vector{1.0, 1.0}));
}

TEST_F(MagPhaseResponse, TakesOddFramesWithoutReachingOutside) {
    for (const std::size_t length : {0U, 1U, 2U, 4U, 5U}) {
        const Values frame(length, 1.0);
        EXPECT_EQ(feed(filter, frame).size(), length / 3 * 3);
        EXPECT_EQ(feed(filter, frame, 9).size(), length);  // no such signal: no channels
    }
    Values out{1.0};
    filter.filterImpl(nullptr, out, 0);
    EXPECT_EQ(out, std::vector{1.0});
}

}  // namespace
