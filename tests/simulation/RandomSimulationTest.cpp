// Simulations of any course through the exported stages: whatever the order of steps, steps back, restarts, size
// changes and tunings, nothing is read or written outside a buffer (the sanitizers watch), and every message fits
// itself.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string_view>

#include "BlockflowSimulation.h"
#include "Catalogue.h"
#include "DeckClient.h"
#include "MessageText.h"
#include "StageLibrary.h"

namespace {

namespace catalogue = dspwavedecks::catalogue;
using wavedeck::PropertyList;
using wavedeck::driver::BlockflowSimulation;
using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::DeckClient;
using wavedeck::driver::SignalFacts;

const wavedeck::driver::StageLibrary& library() {
    static const wavedeck::driver::StageLibrary loaded(STAGE_LIBRARY);
    return loaded;
}

constexpr std::string_view timeStages[] = {
    "bf_simulation_meta_data_filter",   "bf_simulation_pacer_filter",
    "magnitude_phase_filter",           "bf_wavedeck_measurements_data_cache_filter",
    "bf_time_signal_statistics_filter", "bf_time_peak_finder_filter",
    "bf_bilevel_measurements_filter",   "bf_trigger_filter",
};
constexpr std::string_view spectrumStages[] = {
    "bf_simulation_meta_data_filter",     "bf_simulation_pacer_filter",   "bf_input_port_parameters_handler_filter",
    "bf_spectrum_estimator_filter",       "frequency_peak_finder_filter", "channel_measurements_filter",
    "distortion_measurements_filter",     "phase_noise_filter",           "spectral_mask_tester_filter",
    "bf_spectrum_data_aggregator_filter",
};
constexpr std::string_view portOptions[] = {"inputPortFrequencyVector", "inputPortRBW", "inputPortVBW"};

class RandomSimulation : public wavedeck::driver::SimulationInput {
public:
    RandomSimulation(ChainKind kind, unsigned seed)
        : random_(seed), isTime_(kind == ChainKind::BlockflowTime), client_(makeFacts(kind)) {
        for (const std::string_view stage : stages()) {
            const std::string name(stage);
            PropertyList options;
            for (const auto* option : catalogue::findStage(stage)->options) {
                if (option->name.ends_with("Enabled")) {
                    options.addLogical(std::string(option->name), true);
                }
            }
            if (stage.starts_with("bf_input_port") || stage.starts_with("bf_spectrum_estimator")) {
                options.addDouble("sampleRate", 1.0 / sampleTime).addDouble("defaultSegmentLength", 16);
                for (std::size_t port = 0; port < 3; ++port) {
                    options.addLogical(std::string(portOptions[port]), hasPort_[port]);
                }
            }
            client_.addStage(name, library().makeFilter(name), options);
        }
        const std::string strategy =
            isTime_ ? "dsp_wavedeck_time_data_strategy" : "bf_dsp_wavedeck_frequency_data_strategy";
        client_.setStrategy(strategy, library().makeStrategy(strategy));
        client_.setup();
        simulation_ = std::make_unique<BlockflowSimulation>(client_, *this, 20);
    }

    void run(int calls) {
        for (int i = 0; i < calls; ++i) {
            call();
            check();
        }
    }

    int shown() const { return shown_; }

private:
    static constexpr double sampleTime = 0.0025;

    std::size_t pick(std::size_t below) { return random_() % below; }
    template <class Value>
    Value among(std::initializer_list<Value> values) {
        return values.begin()[pick(values.size())];
    }
    std::span<const std::string_view> stages() const {
        return isTime_ ? std::span<const std::string_view>(timeStages) : spectrumStages;
    }

    ClientFacts makeFacts(ChainKind kind) {
        ClientFacts facts;
        facts.name = "random";
        facts.kind = kind;
        facts.timeBased = pick(2) == 0;
        facts.stopTime = pick(3) == 0 ? 0.5 : std::numeric_limits<double>::infinity();
        facts.displaySpan = among({0.02, 0.1, 5.0});
        const int size = static_cast<int>(among({1, 5, 16}));
        for (std::size_t s = 1 + pick(2); s > 0; --s) {
            const bool isComplex = pick(3) == 0;
            facts.signals.push_back(
                {"s", static_cast<int>(1 + pick(2)) * (isComplex ? 2 : 1), isComplex, sampleTime, 0.1, size, false});
        }
        for (std::size_t port = 0; port < 3 && !isTime_; ++port) {
            hasPort_[port] = pick(3) == 0;
            if (hasPort_[port]) {
                const int portSize = port == 0 ? 4 : 1;
                facts.signals.push_back({"p", 1, false, sampleTime * size / portSize, 0.0, portSize, true});
            }
        }
        return facts;
    }

    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override {
        const SignalFacts facts = client_.facts().signals[signal];
        frame.resize(facts.isInputPort && pick(3) == 0 ? 0 : frameSize * static_cast<std::size_t>(facts.numChannels));
        for (double& value : frame) {
            value = facts.isInputPort ? among<double>({1, 20, 20, 20, 50, 0, -1, NAN})
                                      : among<double>({0, 0, 1, 1, -1, 0.5, 3, 1e300, NAN, HUGE_VAL});
        }
        return pick(200) != 0;
    }
    void restart() override {}

    /// Any value that the option's reader takes, or nothing.
    PropertyList anyValue(const catalogue::Option& option) {
        using catalogue::Kind;
        const std::string name(option.name);
        PropertyList list;
        if (option.giver == catalogue::Giver::Host || name.starts_with("inputPort")) {
            return list;
        }
        if (!option.words.empty() && !isList(option.kind)) {
            return list.addChar(name, std::string(option.words[pick(option.words.size())].text));
        }
        switch (option.kind) {
            case Kind::Double:
            case Kind::DoubleOrInt:
                return list.addDouble(name, among({0.0, 1.0, -1.0, 0.5, 5.0, 50.0, 100.0}));
            case Kind::Int:
                return list.addInt(name, among({0, 0, 1, 2, -1, 5}));
            case Kind::Logical:
                return list.addLogical(name, pick(2) == 0);
            case Kind::Text:
                return list.addChar(name, among<std::string>({"0", "1", "-Inf", "Inf", "2.5", "-100,100,-10,-10"}));
            case Kind::Doubles:
                return list.addDoubles(name,
                                       among<std::vector<double>>({{}, {1}, {0, 50}, {-100, 100}, {3, -1, 4, 0.5}}));
            case Kind::Logicals:
                return list.addLogicals(name, std::vector<bool>(client_.facts().signals.size(), pick(2) == 0));
            default:
                return list;
        }
    }

    void tune() {
        const std::string_view stage = stages()[pick(stages().size())];
        const auto options = catalogue::findStage(stage)->options;
        const auto& option = *options[pick(options.size())];
        const PropertyList list = anyValue(option);
        if (list.begin() == list.end() || !intersects(option.when, catalogue::When::Tune)) {
            return;
        }
        try {
            client_.tune(std::string(stage), list);
        } catch (const std::exception&) {
            // refused: the stage goes on with what it had
        }
    }

    void changeSizes() {
        std::vector<int> sizes;
        for (const SignalFacts& signal : client_.facts().signals) {
            sizes.push_back(signal.isInputPort ? signal.frameSize : among({0, 1, 3, 5, 16, 40}));
        }
        simulation_->setFrameSizes(sizes);
    }

    void call() {
        switch (pick(24)) {
            case 0:
                return client_.setup();
            case 1:
                return simulation_->restart(pick(2) == 0);
            case 2:
                return client_.rollback(PropertyList().addDouble("rollbacktime", among({-1.0, 0.0, 0.03, 0.1, 9.0})));
            case 3:
                return client_.reset();
            case 4:
                return static_cast<void>(client_.replay());
            case 5:
                return client_.setReplaying(pick(2) == 0);
            case 6:
                return client_.setDisplaySpan(among({0.01, 0.1, 1.0}));
            case 7:
                return changeSizes();
            case 8:
                return pick(2) == 0 ? simulation_->pause() : simulation_->resume();
            case 9:
            case 10:
                return static_cast<void>(simulation_->stepBack());
            case 11:
            case 12:
            case 13:
            case 14:
                return tune();
            case 15:
                return static_cast<void>(simulation_->step());
            default:
                simulation_->resume();
                simulation_->step();
                simulation_->deliver(1 + pick(4));
        }
    }

    void check() {
        auto message = client_.updateNow().message;
        EXPECT_FALSE(text_.write(*message).empty());
        const auto signals = message->getArray("signals");
        for (unsigned s = 0; signals && s < signals->size(); ++s) {
            const auto signal = signals->getObject(s);
            if (!signal) {
                continue;  // nothing of it came yet
            }
            const auto channels = signal->getArray("channel");
            for (unsigned k = 0; k < channels->size(); ++k) {
                const auto channel = channels->getObject(k);
                const auto points = channel->getArray(isTime_ ? "time" : "frequency")->size();
                const auto values = channel->getArray("data")->size();
                shown_ += values > 0 ? 1 : 0;
                ASSERT_TRUE(isTime_ ? values == points : values % std::max<std::size_t>(points, 1) == 0)
                    << values << " of " << points;
            }
        }
    }

    std::mt19937 random_;
    bool isTime_;
    bool hasPort_[3] = {};
    DeckClient client_;
    std::unique_ptr<BlockflowSimulation> simulation_;
    wavedeck::driver::MessageText text_;
    int shown_ = 0;  ///< channels with values in all messages
};

/// --gtest_shuffle with --gtest_random_seed=N runs others.
TEST(RandomSimulation, AnyCourseKeepsItsMessagesWhole) {
    for (const ChainKind kind : {ChainKind::BlockflowTime, ChainKind::BlockflowSpectrum}) {
        int shown = 0;
        const auto first = 40 * static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
        for (unsigned seed = first; seed < first + 40; ++seed) {
            SCOPED_TRACE(std::string(chainKindName(kind)) + ", seed " + std::to_string(seed));
            RandomSimulation simulation(kind, seed);
            simulation.run(150);
            shown += simulation.shown();
        }
        EXPECT_GT(shown, 1000);
    }
}

}  // namespace
