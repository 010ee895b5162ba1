#include "DriverRig.h"
#include "streamplug/Exceptions.h"
#include "wavedeck/TimeDeckThinnerFilter.h"

namespace {

using wavedeck::TimeDeckThinnerFilter;

/// What the thinner makes of rows of equal length, positions first.
Values thinned(const std::vector<Values>& rows, double numPoints, bool isComplex = false) {
    const int channels = static_cast<int>(rows.size()) - 1;
    SignalFacts signal = realSignal(isComplex ? 2 * channels : channels, 1.0, 4);
    signal.isComplex = isComplex;
    DeckClient client(factsOf(ChainKind::Spectrum, {signal}));
    const auto thinner = std::make_shared<TimeDeckThinnerFilter>();
    client.addStage("thinner", thinner, PropertyList().addDouble("numPoints", numPoints));
    client.setup();
    const Values data = joined(rows);
    Values out{-7.0};
    thinner->setInputLength(data.size());
    thinner->filterImpl(data.data(), out, 0);
    return out;
}

TEST(Thinner, KeepsMinimumAndMaximumOfEachBucketAtTheirPlaces) {
    const Values f{0, 1, 2, 3, 4, 5, 6, 7};
    const Values x{3, 1, 4, 1, 5, 9, 2, 6};
    const Values y{0, 0, 0, 0, 8, 0, 0, -8};
    EXPECT_EQ(thinned({f, x}, 0.0), (Values{0, 1, 2, 3, 4, 5, 6, 7, 3, 1, 4, 1, 5, 9, 2, 6}));
    EXPECT_EQ(thinned({f, x}, 8.0).size(), 16U) << "as many as there are";
    EXPECT_EQ(thinned({f, x}, 4.0), (Values{1, 2, 5, 6, 1, 4, 9, 2}));
    EXPECT_EQ(thinned({f, x}, 1.0), (Values{1, 5, 1, 9})) << "an extreme of each kind always stays";
    // Rows stay parallel: the positions of one channel's extremes carry the other's own values.
    EXPECT_EQ(thinned({f, x, y}, 4.0), (Values{1, 4, 5, 7, 1, 5, 9, 6, 0, 8, 0, -8}));
    EXPECT_EQ(thinned({f, x, y}, 4.0, true), thinned({f, x, y}, 4.0)) << "a complex signal has half its raw channels";
}

TEST(Thinner, NumbersHideNeitherBehindNorAreMadeOfNaN) {
    EXPECT_EQ(thinned({{0, 1, 2, 3}, {nan, 2, nan, 1}}, 2.0), (Values{1, 3, 2, 1}));
    EXPECT_EQ(thinned({{0, 1, 2, 3}, {nan, nan, 5, 6}}, 3.0).size(), 4U);
    const Values allNaN = thinned({{0, 1, 2, 3}, {nan, nan, nan, nan}}, 2.0);
    ASSERT_EQ(allNaN.size(), 2U) << "a bucket without a number keeps its first point";
    EXPECT_EQ(allNaN[0], 0.0);
    EXPECT_TRUE(std::isnan(allNaN[1]));
}

TEST(Thinner, HoldsItsLimitInLongRows) {
    for (const std::size_t points : {101U, 1000U, 4097U}) {
        const Values x = gaussianNoise(points, 1);
        const Values out = thinned({ramp(0, points), x}, 100.0);
        const std::size_t kept = out.size() / 2;
        EXPECT_TRUE(kept <= 100 && kept >= 90) << kept;
        for (std::size_t i = 0; i < kept; ++i) {
            EXPECT_EQ(out[kept + i], x[static_cast<std::size_t>(out[i])]);
        }
    }
}

TEST(Thinner, TellsFaultsOfItsOptions) {
    DeckClient client(factsOf(ChainKind::Spectrum, {realSignal(1, 1.0, 4)}));
    client.addStage("thinner", std::make_shared<TimeDeckThinnerFilter>());
    client.setup();
    const auto fault = [&](const PropertyList& list) -> std::string {
        try {
            client.sendAsIs("thinner", list);
        } catch (const numbench::Exception& exception) {
            return exception.what();
        }
        return "";
    };
    const auto tune = [] { return optionList("action=tune"); };
    EXPECT_EQ(fault({}), "Option: action was not found");
    EXPECT_EQ(fault(PropertyList().addDouble("action", 1.0)), "Option: action was not a char or string");
    EXPECT_EQ(fault(tune().addInt("numPoints", 1)), "Option: numPoints was not the expected type");
    EXPECT_EQ(fault(tune().addDoubles("numPoints", {1, 2})), "Option: numPoints was not a scalar");
    EXPECT_EQ(fault(tune().addDouble("numPoints", -1.0)), "Option: numPoints value was not a number of points");
    EXPECT_EQ(fault(optionList("action=unknown")), "");
}

}  // namespace
