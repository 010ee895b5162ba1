#include "DriverRig.h"
#include "SampleHistory.h"

namespace {

TEST(SampleHistory, KeepsTheNewestPointsForAnySplitIntoFrames) {
    constexpr std::size_t total = 100;
    for (const std::size_t capacity : {1U, 7U, 99U, 100U, 128U}) {
        for (const std::size_t frame : {1U, 3U, 7U, 50U, 100U}) {
            SampleHistory history;
            history.configure(2, capacity);
            for (std::size_t first = 0; first < total; first += frame) {
                const std::size_t n = std::min(frame, total - first);
                const auto value = static_cast<double>(first);
                history.append(joined({ramp(value, n), ramp(value + 1000.0, n)}).data(), n);
            }
            const std::size_t kept = std::min(capacity, total);
            const auto oldest = static_cast<double>(total - kept);
            const Values expected = joined({ramp(oldest, kept), ramp(oldest + 1000.0, kept)});
            Values blocks;
            history.layOut(blocks);
            EXPECT_EQ(blocks, expected) << capacity << " " << frame;
            history.grow(200);
            history.layOut(blocks);
            EXPECT_EQ(blocks, expected) << "grown from " << capacity;
        }
    }
}

TEST(SampleHistory, ForgetsWhatLiesBehindATime) {
    SampleHistory history;
    history.configure(1, 5);
    const Values times = ramp(0, 8);
    history.append(times.data(), 8);
    history.dropNewerThan(5.5);
    Values left;
    history.layOut(left);
    EXPECT_EQ(left, (Values{3, 4, 5}));
    const Values again{4, 4.5};
    history.appendTimed(again.data(), 2);
    history.layOut(left);
    EXPECT_EQ(left, (Values{3, 4, 4.5}));
    history.dropNewest(9);
    EXPECT_EQ(history.size(), 0U);
}

TEST(Display, HistoryHoldsTwiceTheSpanAndAFrameOrWhatAMessageShows) {
    for (const auto& [span, expected] : {std::pair{10.0, 15361}, {10000.0, 20004}}) {
        ClientFacts facts = factsOf(ChainKind::Time, {realSignal(1, 1.0, 4)});
        facts.displaySpan = span;
        DriverRig rig(facts);
        rig.add("stage");
        rig.client.setup();
        rig.client.frame(Buffers{ramp(0, 12000)});
        rig.client.frame(Buffers{ramp(12000, 12000)});
        EXPECT_EQ(rig.shown().front(), 24000.0 - expected) << "oldest time";
        ASSERT_EQ(rig.strategy->numPoints[0], expected);
        EXPECT_EQ(rig.strategy->data[0].back(), 23999.0);
        EXPECT_EQ(DriverRig::info().getClientSettings().axesTimeTable[0].timeSpan, span);
    }
}

TEST(Display, HistoryIsDroppedWhenTheChannelsChange) {
    DriverRig rig(ChainKind::Time, {realSignal(1, 1.0, 2)});
    const auto stage = rig.add("magnitude_phase_filter", [](const auto& data, auto& out, int) {
        out = data;
        out.insert(out.end(), {0.0, 180.0});
    });
    stage->onAction = [&](const PropertyList& list) {
        const bool marked = list.find("mark") != nullptr;
        DriverRig::info().channelSizeFactors = {marked ? 2.0 : 1.0};
        stage->active = marked;
    };
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2}});
    rig.client.tune("magnitude_phase_filter", {});
    EXPECT_EQ(rig.shown(), (Values{0, 1, 1, 2})) << "a tune alone leaves the samples";
    rig.client.tune("magnitude_phase_filter", PropertyList().addLogical("mark", true));
    EXPECT_EQ(rig.shownNow(), Values{});
    rig.client.frame(Buffers{{3, 4}});
    EXPECT_EQ(rig.shown(), (Values{2, 3, 3, 4, 0, 180}));
    EXPECT_EQ(rig.strategy->numChannels[0], 2);
    // Marks alone change what the channels mean, as for a complex signal.
    DriverRig::info().getClientSettings().addCustomSetting("magPhaseData", std::vector<bool>{true});
    rig.client.reset();
    EXPECT_EQ(rig.shownNow(), Values{});
}

TEST(Display, AFrameStandsAgainstItsOwnSamplesAndIsReplayedAlone) {
    ClientFacts facts = factsOf(ChainKind::Frame, {realSignal(1, 0.5, 2)});
    facts.startTime = 100.0;
    DriverRig rig(facts);
    const auto tap = rig.add("tap");
    rig.client.setup();
    rig.client.frame(Buffers{{1, 2, 3, 4}});
    rig.client.frame(Buffers{{5, 6, 7}});
    EXPECT_EQ(rig.shown(), (Values{0, 0.5, 1, 5, 6, 7}));
    rig.client.replay();
    EXPECT_EQ(tap->seen[0], (Values{0, 0.5, 1, 5, 6, 7}));
}

/// A spectrum client whose estimator puts out `lines` lines of 2 points for 2 channels: values channel + line / 10.
struct SpectrumRig : DriverRig {
    SpectrumRig() : DriverRig(factsOf(ChainKind::Spectrum, {realSignal(2, 1.0, 2)})) {
        add("spectrum_estimator_filter", [this](const auto&, auto& out, int) {
            const std::size_t block = 2 * lines;
            out.assign(3 * block, 0.0);
            out[0] = 10.0;
            out[1] = 20.0;
            for (std::size_t i = 0; i < 2 * block; ++i) {
                out[block + i] =
                    static_cast<double>(1 + i / block) + 0.1 * (count + static_cast<double>(i % block / 2));
            }
            count += static_cast<double>(lines);
        });
        tap = add("channel_measurements_filter");
        info().getClientSettings().addCustomSetting("spectrumLength", 2UL);
        client.setup();
    }

    std::size_t lines = 1;
    double count = 0.0;
    std::shared_ptr<RecordingStage> tap;
};

TEST(Display, ASpectrogramsLinesAreGatheredAndTapsSeeTheNewest) {
    SpectrumRig rig;
    rig.client.tune("spectrum_estimator_filter", optionList("showSpectrogram=true"));
    const Buffers frame{{1, 2, 3, 4}};
    rig.client.frame(frame);
    rig.lines = 2;
    rig.client.frame(frame);
    EXPECT_EQ(rig.tap->seen[0], (Values{10, 20, 1.2, 1.2, 2.2, 2.2}));
    EXPECT_EQ(rig.shown(), (Values{10, 20, 0, 0, 0, 0, 1, 1, 1.1, 1.1, 1.2, 1.2, 2, 2, 2.1, 2.1, 2.2, 2.2}));
    EXPECT_EQ(rig.strategy->numPoints[0], 6);
    rig.lines = 1;
    rig.client.frame(frame);
    EXPECT_EQ(rig.shown(), (Values{10, 20, 1.3, 1.3, 2.3, 2.3})) << "lines go out once";
}

TEST(Display, EveryActionOnAReplacingStageDropsItsOutput) {
    using Act = void (*)(DeckClient&);
    const std::vector<Act> actions = {
        [](auto& client) { client.setup("spectrum_estimator_filter", {}); },
        [](auto& client) { client.tune("spectrum_estimator_filter", {}); },
        [](auto& client) { client.resize({2}, {4}); },
        [](auto& client) { client.rollback(PropertyList{}); },
        [](auto& client) { client.reset(); },
    };
    for (const bool spectrogram : {false, true}) {
        SpectrumRig rig;
        rig.client.tune("channel_measurements_filter", PropertyList().addLogical("showSpectrogram", spectrogram));
        for (const Act act : actions) {
            rig.client.frame(Buffers{{1, 2, 3, 4}});
            act(rig.client);
            EXPECT_EQ(rig.shownNow(), Values{});
        }
        rig.client.frame(Buffers{{1, 2, 3, 4}});
        rig.client.tune("channel_measurements_filter", {});
        EXPECT_EQ(rig.shownNow().size(), 6U) << "an action on a tap drops nothing";
    }
}

TEST(Display, AComplexSignalsSpectrumHasHalfTheChannels) {
    SignalFacts signal = realSignal(4, 1.0, 2);
    signal.isComplex = true;
    DriverRig rig(ChainKind::Spectrum, {signal});
    const auto estimator = rig.add("estimator", [](const auto&, auto& out, int) { out.assign(9, 1.0); });
    estimator->onAction = [](const PropertyList&) { DriverRig::info().channelSizeFactors = {0.5}; };
    rig.client.setup();
    rig.client.frame(Buffers{ramp(0, 8)});
    rig.client.update();
    EXPECT_EQ(rig.strategy->numChannels[0], 2);
    EXPECT_EQ(rig.strategy->numPoints[0], 3);
}

TEST(Display, ARollbackMovesTheStreamBack) {
    for (const double time : {0.75, 0.8}) {
        DriverRig rig(ChainKind::Time, {realSignal(1, 0.25, 8)});
        const auto stage = rig.add("stage");
        rig.client.setup();
        rig.client.frame(Buffers{ramp(0, 8)});
        rig.client.rollback(PropertyList().addDouble("rollbacktime", time));
        EXPECT_EQ(rig.client.streamTime(), 1.0);
        EXPECT_EQ(rig.shownNow().size(), 8U);
        rig.client.frame(Buffers{{-1}});
        EXPECT_EQ(stage->seen[0], (Values{1.0, -1}));
        EXPECT_EQ(rig.shown(), (Values{0, 0.25, 0.5, 0.75, 1, 0, 1, 2, 3, -1}));
    }
}

}  // namespace
