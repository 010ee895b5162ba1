#include "BaseFilter.h"

#include "Board.h"
#include "Test.h"
#include "TestClient.h"
#include "streamplug/Exceptions.h"

namespace {

class PlainFilter : public BaseFilter {
public:
    PlainFilter() { registerUsualActions(); }
    void setPropertiesOnSetup(const PropertyList& list) override {
        BaseFilter::setPropertiesOnSetup(list);
        setPropertiesImpl(list);
    }
    void setPropertiesImpl(const PropertyList& list) override {
        BaseFilter::setPropertiesImpl(list);
        ++calls;
    }
    int calls = 0;
    using BaseFilter::isRangeInFrame;
    using BaseFilter::numSignals;
    using BaseFilter::totalNumChannels;
    using BaseFilter::updateFilterSignalAndChannel;
};

TEST(BaseFilter, answersItsActions) {
    TestClient client({3, 5});
    client->setIsComplex({0, 1});
    PlainFilter filter;
    EXPECT_THROW(filter.tuneImpl(optionList("measurementSignal=1")), streamplug::kit::array::OptionNotFound);
    filter.tuneImpl(TestClient::list("unknown"));
    filter.tuneImpl(TestClient::list("onRollback"));
    EXPECT_EQ(0, filter.calls);
    filter.tuneImpl(client.setup("measurementSignal=1 measurementChannel=2 customSpan=-1.0 autoSpan=true"));
    EXPECT_EQ(-1.0, filter.getCustomSpanSeconds());
    EXPECT_TRUE(filter.getCustomSpan() && filter.getAutoSpan());
    EXPECT_EQ(1, filter.calls);
    EXPECT_EQ("client", filter.getClientID());
    EXPECT_EQ(2, filter.numSignals);
    EXPECT_EQ(3u + 2u, filter.totalNumChannels);
    EXPECT_TRUE(filter.isLastSignal(1));
    EXPECT_FALSE(filter.isLastSignal(0));
    filter.rollbackImpl(TestClient::tune());  // the same table
    EXPECT_EQ(2, filter.calls);

    client.numChannels = {7, 4};
    filter.tuneImpl(client.sizeChange());
    EXPECT_EQ(5u, filter.totalNumChannels);
    EXPECT_EQ(9u, filter.getTotalNumChannels());
}

TEST(BaseFilter, countsSignalsInWhole) {
    TestClient client;
    client.numChannels = client.frameSize = {};
    PlainFilter filter;
    filter.tuneImpl(optionList("numSignals=2.9").append(client.setup()));  // the first of a name counts
    EXPECT_EQ(2, filter.numSignals);
    EXPECT_EQ(0u, filter.getTotalNumChannels());
    EXPECT_EQ(0u, filter.getNumPointsPerChannel(1));  // no such signal, nothing in hand
}

TEST(BaseFilter, knowsTheLayoutOfTheBuffer) {
    const struct {
        int channels, isComplex;
        std::vector<bool> marks;
        unsigned long inputLength, points;
    } rows[] = {
        {3, 0, {false}, 40, 10}, {3, 0, {true}, 40, 5},   {3, 1, {true}, 40, 10}, {3, 0, {}, 40, 10},
        {0, 0, {true}, 40, 40},  {-1, 0, {}, 40, 40 / 1}, {2, 0, {}, 2, 0},
    };
    for (const auto& row : rows) {
        TestClient client({row.channels});
        client->setIsComplex({row.isComplex});
        PlainFilter filter;
        filter.tuneImpl(client.setup().addLogicals("magPhaseData", row.marks));
        filter.setInputLength(row.inputLength);
        EXPECT_EQ(row.channels < 0 ? 0 : row.points, filter.getNumPointsPerChannel(0)) << row.channels;
    }
    TestClient client({3});
    PlainFilter filter;
    filter.tuneImpl(client.setup());
    filter.setInputLength(40);
    const auto range = [&](int channel) {
        filter.tuneImpl(TestClient::tune().addInt("measurementChannel", channel));
        return filter.getDataRange(0);
    };
    EXPECT_EQ((std::vector<unsigned long>{20, 30}), range(1));
    EXPECT_TRUE(filter.isRangeInFrame(range(2)));
    EXPECT_FALSE(filter.isRangeInFrame(range(3)));
    EXPECT_FALSE(filter.isRangeInFrame(range(-2)));
    EXPECT_FALSE(filter.isRangeInFrame(range(-100)));
}

TEST(BaseFilter, keepsTheBoardOverASecondSetup) {
    TestClient client;
    PlainFilter filter;
    filter.tuneImpl(client.setup("measurementChannel=3 measurementSignal=0"));
    filter.updateFilterSignalAndChannel();
    filter.tuneImpl(client.setup());
    const auto package = BaseFilter::packageImpl(client.name());
    EXPECT_EQ(0, package->getValue<int>("signal"));
    EXPECT_EQ(3, package->getValue<int>("channel"));

    *client.board().find(BaseFilter::measurementChannel) = std::string("another type");
    filter.updateFilterSignalAndChannel();  // writes nothing
    EXPECT_EQ(0, BaseFilter::packageImpl(client.name())->getValue<int>("channel"));
}

}  // namespace
