#include <new>

#include "DriverTest.h"
#include "LimitedAllocation.h"

namespace {

using streamplug::interfaces::device::PropertyList;

constexpr int frameSize = 32;

/// A deck whose buffers grow while it is played.
struct Deck {
    const char* name;
    ChainKind kind;
    const char* strategy;
    std::vector<std::pair<const char*, std::string>> stages;  ///< with their options
};

/// How a failing test shows the deck.
void PrintTo(const Deck& deck, std::ostream* out) {
    *out << deck.name;
}

/// Spectra of 64 points, several a frame once frames are long.
const std::string spectra =
    "inputDomain=time sampleRate=1000 autoRBW=false rbw=25 overlapPercent=50 timeResolution=0.2";

std::vector<Deck> decks() {
    return {{"time",
             ChainKind::Time,
             "dsp_wavedeck_time_data_strategy",
             {{"magnitude_phase_filter", {}},
              {"dsp_wavedeck_measurements_data_cache_filter", {}},
              {"time_signal_statistics_filter", "signalStatisticsEnabled=true"},
              {"time_peak_finder_filter", "peakFinderEnabled=true"},
              {"bilevel_measurements_filter", "bilevelMeasurementsEnabled=true"},
              {"trigger_filter", "triggerEnabled=true mode=auto"}}},
            {"spectrogram",
             ChainKind::Spectrum,
             "dsp_wavedeck_frequency_data_strategy",
             {{"spectrum_estimator_filter", spectra + " showSpectrogram=true autoTimeResolution=false"},
              {"frequency_peak_finder_filter", "peakFinderEnabled=true"}}},
            {"filter bank",
             ChainKind::Spectrum,
             "dsp_wavedeck_frequency_data_strategy",
             {{"spectrum_estimator_filter", spectra + " method=filter-bank"},
              {"distortion_measurements_filter", "distortionMeasurementsEnabled=true"}}},
            {"simulation",
             ChainKind::BlockflowSpectrum,
             "bf_dsp_wavedeck_frequency_data_strategy",
             {{"bf_spectrum_estimator_filter", spectra},
              {"channel_measurements_filter", "channelMeasurementsEnabled=true"},
              {"bf_spectrum_data_aggregator_filter", {}}}}};
}

class AllocationFailure : public testing::TestWithParam<Deck> {
protected:
    static void addStages(DeckClient& client) {
        for (const auto& [name, options] : GetParam().stages) {
            client.addStage(name, stageLibrary().makeFilter(name), optionList(options));
        }
        client.setStrategy(GetParam().strategy, stageLibrary().makeStrategy(GetParam().strategy));
    }

    /// Sets up and plays frames of growing length; returns the message behind them.
    static std::string play(DeckClient& client) {
        client.setup();
        std::size_t sample = 0;
        for (const std::size_t frames : {1, 3, 8, 12}) {
            Values frame;
            const bool isSimulation = isBlockflow(GetParam().kind);
            for (std::size_t i = 0; isSimulation && i < frames; ++i) {
                frame.push_back(1e-3 * static_cast<double>(sample + i * frameSize));
            }
            for (std::size_t i = 0; i < frames * frameSize; ++i, ++sample) {
                frame.push_back(std::sin(0.7 * static_cast<double>(sample)));
            }
            isSimulation ? client.simulationFrame({frame}) : client.frame({frame});
        }
        const auto update = client.updateNow();
        return update.message.isNull() ? "" : MessageText().write(*update.message);
    }
};

/// Whichever allocation fails, the failure is reported as such, and the client goes on: set up anew, it gives what one
/// gives that has never failed.
TEST_P(AllocationFailure, LeavesAClientThatCanBeSetUpAnew) {
    const auto untouched = [] {
        DeckClient client(factsOf(GetParam().kind, {realSignal(1, 1e-3, frameSize)}));
        addStages(client);
        return play(client);
    }();
    ASSERT_GT(untouched.size(), 100U);
    int failures = 0;
    bool failed = true;
    for (long count = 1; failed; count += 1 + count / 16) {
        const auto countFailure = [&](const auto& action) {
            testsupport::failAllocationAfter(count);
            try {
                action();
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            failed = testsupport::hasAllocationFailed();
            testsupport::failAllocationAfter(0);
        };
        countFailure([] {
            const DeckClient made(factsOf(GetParam().kind, {realSignal(1, 1e-3, frameSize)}));
        });  // leaves no name behind that would then be taken
        DeckClient client(factsOf(GetParam().kind, {realSignal(1, 1e-3, frameSize)}));
        addStages(client);
        countFailure([&] { play(client); });
        ASSERT_TRUE(play(client) == untouched) << "allocation " << count;
    }
    EXPECT_GT(failures, 20);
}

INSTANTIATE_TEST_SUITE_P(Decks, AllocationFailure, testing::ValuesIn(decks()), [](const auto& info) {
    std::string name = info.param.name;
    name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
    return name;
});

}  // namespace
