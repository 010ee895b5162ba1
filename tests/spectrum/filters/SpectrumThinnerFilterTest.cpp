#include "SpectrumThinnerFilter.h"

#include "Test.h"
#include "TestClient.h"

namespace {

TEST(SpectrumThinnerFilter, recordsTheLengthsThatComeOut) {
    TestClient client({2, 4});
    client->setIsComplex({0, 1});
    SpectrumThinnerFilter thinner;
    EXPECT_EQ(nullptr, SpectrumThinnerFilter::getThinnedSpectrumLength(client.name()));
    thinner.tuneImpl(client.setup("numPoints=4"));
    ASSERT_NE(nullptr, SpectrumThinnerFilter::getThinnedSpectrumLength(client.name()));
    EXPECT_TRUE(SpectrumThinnerFilter::getThinnedSpectrumLength(client.name())->empty());
    Values frame(3 * 40);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i] = static_cast<double>(i * 17 % 101);
    }
    const std::size_t first = feed(thinner, frame, 0).size();
    const auto& lengths = *SpectrumThinnerFilter::getThinnedSpectrumLength(client.name());
    EXPECT_EQ((std::vector<unsigned long>{first / 3, 0}), lengths);
    EXPECT_LT(lengths[0], 40u);
    feed(thinner, Values(3 * 2, 1.0), 1);  // two channels of pairs
    EXPECT_EQ(2u, lengths[1]);
    feed(thinner, {}, 0);
    EXPECT_EQ(0u, lengths[0]);
}

}  // namespace
