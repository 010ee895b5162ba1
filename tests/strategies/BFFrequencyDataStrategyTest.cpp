#include "BFFrequencyDataStrategy.h"

#include "BFInputPortParametersHandlerFilter.h"
#include "BFSpectrumDataAggregatorFilter.h"
#include "JsonArrays.h"
#include "StrategyTestSupport.h"

namespace {

/// The signal of a message about one buffer.
/// frameSize  points of a slot
ObjectPointer signalOf(TestClient& client, int frameSize, const Values& buffer) {
    client.frameSize = {frameSize};
    BFFrequencyDataStrategy strategy;
    return signalOf(strategy, client, buffer);
}

std::string dataOf(const ObjectPointer& signal, unsigned channel) {
    return text(at(signal, "channel", channel), "data");
}

// Padding is 0.5 here, so that it shows.
TEST(BFFrequencyDataStrategy, findsTheSpectraOfABufferLaidOutByHand) {
    const struct {
        const char* what;
        unsigned long length;
        int frameSize;
        bool isSpectrogram;
        std::uint64_t lines;
        Values header;
        Values points;
        const char* expected;
    } rows[] = {
        {"a slot", 2, 2, false, 9, {1}, {1, 2}, "[1,2]"},
        {"a spectrum shorter than a slot", 2, 3, false, 9, {1}, {1, 2, 0.5}, "[1,2]"},
        {"a spectrum longer than a slot", 3, 2, false, 9, {1, 0}, {1, 2, 3, 0.5}, "[1,2,3]"},
        {"the last slot alone", 2, 3, false, 9, {1, 1}, {1, 2, 0.5, 3, 4, 0.5}, "[3,4]"},
        {"a slot for each line", 2, 2, true, 9, {0, 2, 1}, {1, 2, 3, 4, 5, 6}, "[5,6,3,4,1,2]"},
        {"as many lines as are shown", 2, 2, true, 2, {0, 2, 1}, {1, 2, 3, 4, 5, 6}, "[5,6,3,4]"},
        {"lines over two slots", 2, 3, true, 9, {0, 2, 1}, {1, 2, 3, 4, 0.5, 0.5, 5, 6, 0.5}, "[5,6,3,4,1,2]"},
        {"no slot for the end of the last", 3, 2, true, 9, {1, 0, 1}, {1, 2, 3, 4, 5, 6}, "[4,5,6,1,2,3]"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        TestClient client({2});
        auto& record = publish(client, row.length);
        record.showSpectrogram = row.isSpectrogram;
        record.numSpectrogramLines = row.lines;
        record.frequencyVector = {10, 20, 30, 40};
        const Values others(row.points.size(), 0.25);
        const auto signal = signalOf(client, row.frameSize, joined({row.header, others, row.points}));
        EXPECT_EQ(row.expected, dataOf(signal, 1));
        EXPECT_EQ(std::string::npos, dataOf(signal, 0).find("0.5"));
        EXPECT_EQ(static_cast<int>(row.length), signal->getValue<int>("spectrumLength"));
        EXPECT_EQ(row.length, at(signal, "channel", 0)->getArray("frequency")->size());
    }
}

TEST(BFFrequencyDataStrategy, leavesOutWhatDoesNotFit) {
    const struct {
        const char* what;
        unsigned long length;
        int frameSize;
        int channels;
        Values buffer;
    } rows[] = {
        {"no spectrum in the header", 2, 2, 1, {0, 0, 1, 2, 3, 4}},
        {"more spectra than points", 2, 2, 1, {2, 1, 1, 2, 3, 4}},
        {"far more spectra than points", 2, 2, 1, {1e300, 1e300, 1, 2, 3, 4}},
        {"infinitely many", 2, 2, 1, {infinity, 0, 1, 2, 3, 4}},
        {"fewer than none", 2, 2, 1, {-1, 2, 1, 2, 3, 4}},
        {"no number", 2, 2, 1, {nan, nan, 1, 2, 3, 4}},
        {"a spectrum longer than the buffer", 7, 2, 1, {1, 0, 1, 2, 3, 4}},
        {"less than a slot", 2, 9, 1, {1, 0, 1, 2, 3, 4}},
        {"slots of nothing", 2, 0, 1, {1, 0, 1, 2, 3, 4}},
        {"slots of less than nothing", 2, -1, 1, {1, 0, 1, 2, 3, 4}},
        {"slots of more than a count holds", 2, std::numeric_limits<int>::max(), 3, {1, 0, 1, 2, 3, 4}},
        {"no channel", 2, 2, 0, {1, 0, 1, 2, 3, 4}},
        {"fewer channels than none", 2, 2, -3, {1, 0, 1, 2, 3, 4}},
    };
    for (const auto& row : rows) {
        for (const bool isSpectrogram : {false, true}) {
            TestClient client({row.channels});
            auto& record = publish(client, row.length);
            record.showSpectrogram = isSpectrogram;
            record.plotMaxHoldTrace = true;
            const auto signal = signalOf(client, row.frameSize, row.buffer);
            EXPECT_EQ("[]", dataOf(signal, 0)) << row.what;
            EXPECT_EQ("0", signal->getValue<std::string>("dataMax")) << row.what;
        }
    }
    // Eight spectra of 3 in slots of 2 need 16 slots; 12 hold their points.
    TestClient client;
    publish(client, 3).showSpectrogram = true;
    Values buffer(12 * 3, 1.0);
    std::fill(buffer.begin(), buffer.begin() + 12, 0.0);
    buffer[11] = 8;
    EXPECT_EQ("[]", dataOf(signalOf(client, 2, buffer), 0));
}

/// An output of the estimator: so many spectra of two channels that count on from `next`, the second one negative.
Values outputOf(std::size_t spectra, std::size_t length, double& next) {
    Values rows(3 * spectra * length, -1e9);
    for (std::size_t i = 0; i < spectra * length; ++i, ++next) {
        rows[spectra * length + i] = next;
        rows[2 * spectra * length + i] = -next;
    }
    return rows;
}

// Outputs of several numbers of spectra go through the aggregator, are joined as the driver does it, and come out of
// the message newest line first.
TEST(BFFrequencyDataStrategy, agreesWithTheAggregator) {
    for (const std::vector<std::size_t>& outputs : {std::vector<std::size_t>{1}, {3}, {2, 1}, {1, 2, 4}}) {
        for (unsigned long length = 1; length <= 7; ++length) {
            for (std::size_t frameSize = 1; frameSize <= 16; ++frameSize) {
                TestClient client({2});
                client.frameSize = {static_cast<int>(frameSize)};
                publish(client, length).showSpectrogram = true;
                client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumLength, length);
                BFSpectrumDataAggregatorFilter aggregator;
                aggregator.tuneImpl(client.setup());
                std::vector<Values> rows(3);
                double next = 1.0;
                for (const std::size_t spectra : outputs) {
                    aggregator.preProcessImpl();
                    const Values out = feed(aggregator, outputOf(spectra, length, next));
                    EXPECT_TRUE(aggregator.hostFlagB());
                    const std::size_t slots = out.size() / (1 + 2 * frameSize);
                    for (std::size_t row = 0, first = 0; row < 3; ++row) {
                        const std::size_t count = row == 0 ? slots : slots * frameSize;
                        append(rows[row], part(out, first, count));
                        first += count;
                    }
                }
                std::vector<Values> lines;
                while (next > 1.0) {
                    next -= static_cast<double>(length);
                    lines.push_back(ramp(next, length));
                }
                Values newestFirst = joined(lines);
                const auto signal = signalOf(client, client.frameSize[0], joined(rows));
                ASSERT_EQ(arrayText(newestFirst.data(), newestFirst.size()), dataOf(signal, 0))
                    << length << " points in slots of " << frameSize;
                std::transform(newestFirst.begin(), newestFirst.end(), newestFirst.begin(), std::negate<>());
                ASSERT_EQ(arrayText(newestFirst.data(), newestFirst.size()), dataOf(signal, 1));
            }
        }
    }
}

TEST(BFFrequencyDataStrategy, takesTheEstimatorsFrequencies) {
    TestClient client;
    auto& record = publish(client, 3);
    record.frequencyVector = {1, 3, 4};
    record.linearFrequencyVector = false;
    auto signal = signalOf(client, 3, {1, 7, 8, 9});
    EXPECT_EQ("[1,3,4]", text(at(signal, "channel", 0), "frequency"));
    EXPECT_EQ(1, signal->getValue<int>("numInterpolationPoints"));
    record.frequencyVector = {1};  // fewer than the spectrum has
    EXPECT_EQ("[1]", text(at(signalOf(client, 3, {1, 7, 8, 9}), "channel", 0), "frequency"));
}

TEST(BFFrequencyDataStrategy, keepsQuietAboutInputPorts) {
    TestClient client({1, 1, 1});
    publish(client, 1);
    client.frameSize = {1, 1, 1};
    BFInputPortParametersHandlerFilter ports;
    ports.tuneImpl(client.setup("inputPortRBW=true"));
    BFFrequencyDataStrategy strategy;
    const std::vector<Values> data(3, Values{1, 5});
    EXPECT_EQ(3u, update(strategy, client, data)->getArray("signals")->size());
    feed(ports, {0, 100}, 2);
    EXPECT_EQ(2u, update(strategy, client, data)->getArray("signals")->size());
    strategy.setClientID("gone");
    EXPECT_EQ(0, strategy.getNumDataSignals());
}

TEST(BFSpectrumDataAggregatorFilter, leavesOutWhatIsNoSetOfSpectra) {
    const struct {
        const char* what;
        unsigned long length;
        int frameSize;
        int channels;
        std::size_t size;
    } rows[] = {
        {"a rest", 3, 2, 1, 7},
        {"a channel too few", 3, 2, 2, 6},
        {"spectra of no points", 0, 2, 1, 6},
        {"slots of no points", 3, 0, 1, 6},
        {"no data", 3, 2, 1, 0},
    };
    for (const auto& row : rows) {
        TestClient client({row.channels});
        client.frameSize = {row.frameSize};
        BFSpectrumDataAggregatorFilter aggregator;
        aggregator.tuneImpl(client.setup());
        EXPECT_TRUE(feed(aggregator, Values(row.size, 1.0)).empty()) << row.what << ", no length on the board";
        client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumLength, row.length);
        EXPECT_TRUE(feed(aggregator, Values(row.size, 1.0)).empty()) << row.what;
        EXPECT_FALSE(aggregator.hostFlagB()) << row.what;
    }
}

// The estimator gives a row for a complex channel, of which the host counts two.
TEST(BFSpectrumDataAggregatorFilter, countsComplexChannelsOnce) {
    TestClient client({2});
    client->setIsComplex({1});
    client.frameSize = {2};
    client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumLength, 3UL);
    BFSpectrumDataAggregatorFilter aggregator;
    aggregator.tuneImpl(client.setup());
    EXPECT_EQ((Values{1, 0, 4, 5, 6, 0}), feed(aggregator, {1, 2, 3, 4, 5, 6}));
    aggregator.preProcessImpl();
    EXPECT_FALSE(aggregator.hostFlagB());
}

}  // namespace
