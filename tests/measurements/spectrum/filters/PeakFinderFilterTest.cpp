#include "PeakFinderFilter.h"

#include "FrequencyPeakFinderFilter.h"
#include "MagPhaseFilter.h"
#include "SpectrumClient.h"
#include "SpectrumMeasurementQueries.h"

namespace {

TEST(PeakFinderFilter, searchesTheChosenChannel) {
    TestClient client({2});
    client.board().addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
    PeakFinderFilter filter;
    filter.tuneImpl(client.setup("measurementChannel=1 threshold=0.5"));
    const Values frame = {0, 1, 2, 3, 4, /* first */ 0, 9, 0, 9, 0, /* second */ 1, 3, 2, 2.25, 2};
    EXPECT_TRUE(feed(filter, frame).empty());
    feed(filter, Values(15, 0.0), 1);  // not the measured signal
    filter.filterImpl(nullptr, const_cast<Values&>(frame), 0);
    EXPECT_TRUE(QueryAnswer(answerNewPeaks, client).isTrue());
    EXPECT_EQ(textOf(PeakFinderFilter::packageImpl(client.name())),
              R"({"locations":"[1]","numPeaks":1,"peaks":"[3]"})");

    const QueryAnswer answer(answerPeaks, client);
    EXPECT_EQ(answer.fields(), (std::vector<std::string>{"Frequency", "Value"}));
    EXPECT_EQ(answer.numbers("Frequency"), (Values{1}));
    EXPECT_EQ(answer.numbers("Value"), (Values{3}));
    EXPECT_FALSE(QueryAnswer(answerNewPeaks, client).isTrue()) << "taken";

    filter.tuneImpl(TestClient::tune("minHeight=Inf measurementChannel=0"));
    feed(filter, frame);
    EXPECT_EQ(text(PeakFinderFilter::packageImpl(client.name()), "peaks"), "[]");
    EXPECT_THROW(filter.tuneImpl(TestClient::tune("minDistance=far")), std::invalid_argument);
    for (const int absent : {2, -1}) {
        filter.tuneImpl(TestClient::tune("minHeight=-Inf").addInt("measurementChannel", absent));
        feed(filter, frame);
        EXPECT_FALSE(QueryAnswer(answerNewPeaks, client).isTrue()) << absent;
    }
}

/// Six bins of a spectrum, the last one empty, at the end of blocks of seven, for two channels.
constexpr unsigned long spectrumLength = 6;
Values frame(const Values& first, const Values& second, double shift = 0) {
    const Values noPart{50};  // of the spectrum
    return joined({ramp(shift - 1, 6), {99}, noPart, first, {0}, noPart, second, {0}});
}
const Values flat(5, 1.0);

TEST(FrequencyPeakFinderFilter, tellsFrequenciesBetweenTheLimits) {
    const struct {
        const char* why;
        Values limits, bins;
        double shift;
        int numPeaks;
        unsigned long found;
        const char *frequencies, *levels;
    } rows[] = {
        {"all but the last bin", {-1, 9}, {1, 5, 2, 4, 0}, 0, 3, 2, "[100,102]", "[5,4]"},
        {"the upper limit is not searched", {-1, 3}, {1, 2, 5, 4, 9}, 0, 3, 1, "[101]", "[5]"},
        {"0 Hz at the lower limit", {0, 9}, {9, 7, 2, 5, 0}, 0, 3, 2, "[100,102]", "[7,5]"},
        {"0 Hz, the weakest dropped", {0, 9}, {9, 5, 2, 7, 0}, 0, 1, 1, "[102]", "[7]"},
        {"0 Hz beside no other", {0, 9}, {9, 5, 4, 3, 0}, 0, 1, 1, "[100]", "[5]"},
        {"0 Hz where it falls", {0, 9}, {9, 5, 6, 3, 0}, 0, 3, 1, "[101]", "[6]"},
        {"no bin at 0 Hz", {0, 9}, {9, 5, 4, 3, 0}, 0.1, 3, 0, "[]", "[]"},
        {"no peak wanted", {0, 9}, {9, 7, 2, 5, 0}, 0, 0, 0, "[]", "[]"},
        {"equal peaks, the higher frequency first", {0, 9}, {9, 5, 2, 5, 0}, 0, 3, 2, "[102,100]", "[5,5]"},
    };
    for (const auto& row : rows) {
        SpectrumClient client(spectrumLength, {4});
        client->setIsComplex({1});
        FrequencyPeakFinderFilter filter;
        filter.tuneImpl(client.setup("measurementChannel=1 measurementChannelFrequencyOffset=100")
                            .addInt("numPeaks", row.numPeaks)
                            .addDoubles("frequencyLimits", row.limits));
        EXPECT_FALSE(filter.hostFlagB());
        feed(filter, frame({9, 8, 9, 8, 9}, row.bins, row.shift));
        const auto& record = client.record<peakFinderStruct>(PeakFinderFilter::peakFinder);
        const auto package = PeakFinderFilter::packageImpl(client.name());
        EXPECT_EQ(text(package, "locations"), row.frequencies) << row.why;
        EXPECT_EQ(text(package, "peaks"), row.levels) << row.why;
        EXPECT_EQ(record.numPeaks, row.found) << row.why;
        EXPECT_TRUE(record.isNewDataReady) << row.why;
    }
}

TEST(FrequencyPeakFinderFilter, searchesHoldTraces) {
    SpectrumClient client(spectrumLength, {2});
    client.estimator().maxHoldTrace = {0, 0, 0, 0, 0, 0, 9, 8, 6, 7, 6, 0};
    client.estimator().minHoldTrace = {0, 0, 0, 0, 0, 0, 1, 5, 2, 2, 2, 0};
    FrequencyPeakFinderFilter filter;
    filter.tuneImpl(
        client.setup("measurementChannel=1 frequencyLimits=-9,9 normalTraceData=false maxHoldTraceData=true"));
    const auto peaks = [&] {
        feed(filter, frame(flat, flat));
        return text(PeakFinderFilter::packageImpl(client.name()), "locations");
    };
    EXPECT_EQ(peaks(), "[2]");
    filter.tuneImpl(TestClient::tune("maxHoldTraceData=false"));
    EXPECT_EQ(peaks(), "[0]") << "the minimum, whether it is chosen or not";
    client.estimator().minHoldTrace.pop_back();
    EXPECT_EQ(peaks(), "[]") << "too short";
    EXPECT_FALSE(QueryAnswer(answerNewPeaks, client).isTrue());
}

TEST(FrequencyPeakFinderFilter, leavesAnEmptyRecordWhereThereIsNothingToSearch) {
    const struct {
        const char* why;
        unsigned long length;
        int channel;
        Values limits;
    } rows[] = {
        {"limits crossed", spectrumLength, 0, {2, 0}},
        {"limits of one bin", spectrumLength, 0, {1, 1}},
        {"limits above the grid", spectrumLength, 0, {7, 9}},
        {"no limits", spectrumLength, 0, {}},
        {"no spectrum", 0, 0, {-9, 9}},
        {"a spectrum longer than its block", 8, 0, {-9, 9}},
        {"one longer than the frame", 99, 0, {-9, 9}},
        {"no such channel", spectrumLength, 2, {-9, 9}},
        {"a channel below 0", spectrumLength, -1, {-9, 9}},
    };
    for (const auto& row : rows) {
        SpectrumClient client(spectrumLength, {2});
        FrequencyPeakFinderFilter filter;
        filter.tuneImpl(client.setup("frequencyLimits=-9,9"));
        feed(filter, frame({1, 5, 2, 4, 0}, flat));
        EXPECT_EQ(client.record<peakFinderStruct>(PeakFinderFilter::peakFinder).numPeaks, 2u);
        client.setSpectrumLength(row.length);
        filter.tuneImpl(
            TestClient::tune().addInt("measurementChannel", row.channel).addDoubles("frequencyLimits", row.limits));
        feed(filter, frame({1, 5, 2, 4, 0}, flat));
        const auto& record = client.record<peakFinderStruct>(PeakFinderFilter::peakFinder);
        // Limits above the grid: the lower one keeps its bin, the upper one is the last.
        const bool keepsLower = row.limits == Values{7, 9};
        EXPECT_EQ(record.isNewDataReady, keepsLower) << row.why;
        EXPECT_EQ(record.peaks.empty(), !keepsLower) << row.why;
    }
}

}  // namespace
