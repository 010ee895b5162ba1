#include "DriverRig.h"

namespace {

TEST(Replay, HandsTheStoredHistoryAsOneFrameWithItsTimes) {
    DriverRig rig(ChainKind::Time, {realSignal(2, 0.5, 2)});
    const auto record = rig.add("simulation_meta_data_filter");
    const auto tap = rig.add("tap");
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2, 5, 6}});
    rig.client.frame(Buffers{{3, 4, 7, 8}});
    rig.client.update();
    EXPECT_TRUE(rig.client.replay());
    EXPECT_EQ(record->seen[0], (Values{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(tap->seen[0], (Values{0, 0.5, 1, 1.5, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(rig.shown(), tap->seen[0]);
    // Given data is replayed without being stored, and shown in the place of the history.
    EXPECT_TRUE(rig.client.replay(Buffers{{9, 9}}));
    EXPECT_EQ(rig.shown(), (Values{2, 9, 9}));
    rig.client.setReplaying(false);
    EXPECT_EQ(rig.shownNow().size(), 12U);
}

TEST(Replay, EndsWhenNewDataComesOrAStageSaysSoButNotWithASetup) {
    DriverRig rig(ChainKind::Spectrum, {realSignal(1, 1.0, 2)});
    bool ends = false;
    rig.add("estimator", [&](const auto& data, auto& out, int) {
        out = data;
        if (ends) {
            DriverRig::info().setIsDataSourceRepository(false);
        }
    });
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2}});
    EXPECT_TRUE(rig.client.replay());
    rig.client.setup();
    EXPECT_TRUE(rig.client.isReplaying());
    rig.client.replay();
    EXPECT_EQ(rig.shownNow(), (Values{1, 2})) << "stored since before the setup";
    rig.client.frame(Buffers{{3, 4}});
    EXPECT_FALSE(rig.client.isReplaying());
    ends = true;
    EXPECT_FALSE(rig.client.replay());
    EXPECT_EQ(rig.shown(), (Values{1, 2, 3, 4}));
}

TEST(Replay, ReachesBackToAllThatTheNextOutputNeeds) {
    // An output every 40000 samples, far more than a display holds; a replay must be able to give one again.
    DriverRig rig(ChainKind::Spectrum, {realSignal(1, 1e-5, 1000)});
    std::size_t held = 0;
    const auto estimator = rig.add("estimator", [&](const auto& data, auto& out, int) {
        held += data.size();
        if (held >= 40000) {
            held = 0;
            out = {1.0, 2.0};
        }
    });
    rig.client.setup();
    for (int i = 0; i < 200; ++i) {
        rig.client.frame(Buffers{Values(1000, i)});
    }
    rig.client.replay();
    EXPECT_GE(estimator->seen[0].size(), 40000U);
    EXPECT_EQ(estimator->seen[0].back(), 199.0);
}

}  // namespace
