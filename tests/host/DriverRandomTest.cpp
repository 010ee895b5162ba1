// Random calls on clients of every kind: whatever the order, nothing is read or written outside a buffer (the
// sanitizers watch), and what the strategy gets has the form that it counts with.

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "BlockflowSimulation.h"
#include "DriverRig.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace {

using wavedeck::PropertyList;
using wavedeck::WaveDeckClientInfo;
using wavedeck::driver::BlockflowSimulation;
using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::SignalFacts;

/// Frames of any content, now and then none, for ever.
class AnyInput : public wavedeck::driver::SimulationInput {
public:
    explicit AnyInput(std::vector<SignalFacts> signals) : signals_(std::move(signals)) {}
    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override {
        frame.assign(static_cast<std::size_t>(signals_[signal].numChannels) * frameSize, 1.0);
        return true;
    }
    void restart() override {}

private:
    std::vector<SignalFacts> signals_;
};

class RandomCalls {
public:
    RandomCalls(ChainKind kind, unsigned seed) : random_(seed), kind_(kind), rig_(randomFacts()) {
        input_ = std::make_unique<AnyInput>(rig_.client.facts().signals);
        if (wavedeck::driver::isBlockflow(kind)) {
            simulation_ = std::make_unique<BlockflowSimulation>(rig_.client, *input_, 20);
        }
        rig_.client.withInfo(
            [](WaveDeckClientInfo& info) { info.getClientSettings().addCustomSetting("spectrumLength", 3UL); });
        rig_.add(wavedeck::driver::isBlockflow(kind) ? "bf_simulation_meta_data_filter"
                                                     : "simulation_meta_data_filter");
        addReplacing("magnitude_phase_filter");
        rig_.add("channel_measurements_filter");
        rig_.client.setup();
    }

    void run(int calls) {
        for (int i = 0; i < calls; ++i) {
            call();
            check();
        }
    }

private:
    std::size_t pick(std::size_t below) { return random_() % below; }

    ClientFacts randomFacts() {
        std::vector<SignalFacts> signals;
        for (std::size_t s = 1 + pick(3); s > 0; --s) {
            signals.push_back(realSignal(static_cast<int>(2 * pick(3)), 0.25, static_cast<int>(pick(6))));
            signals.back().isComplex = pick(2) == 0;
        }
        ClientFacts facts = factsOf(kind_, signals);
        facts.displaySpan = 10.0;
        return facts;
    }

    /// Puts out lines of three points for each channel that the strategy counts, a whole number of them, or nothing.
    void addReplacing(const std::string& name) {
        const auto stage = rig_.add(name, [this](const auto& data, auto& out, int signal) {
            const auto s = static_cast<std::size_t>(signal);
            const auto channels = static_cast<std::size_t>(static_cast<double>(counts_[s]) * factor_);
            const bool isTime = kind_ == ChainKind::Time || kind_ == ChainKind::BlockflowTime;
            const std::size_t points = isTime ? data.size() / (static_cast<std::size_t>(counts_[s]) + 1) : 3 * pick(4);
            out.assign((channels + 1) * points, 1.0);
            for (std::size_t i = 0; i < points; ++i) {
                out[i] = isTime ? data[i] : static_cast<double>(i);
            }
        });
        stage->onAction = [this](const PropertyList& list) {
            if (list.find("factor")) {
                factor_ = optionValues<double>(list, "factor").front();
            }
            if (list.find("numChannels")) {
                counts_ = optionValues<int>(list, "numChannels");
            }
            wavedeck::WaveDeckClientRegistry::sInstance("driver test")
                ->channelSizeFactors.assign(counts_.size(), factor_);
        };
    }

    Buffers randomFrame(bool asIs) {
        Buffers frame;
        for (const SignalFacts& signal : rig_.client.facts().signals) {
            const std::size_t size = asIs ? pick(30) : static_cast<std::size_t>(signal.numChannels) * pick(40);
            frame.emplace_back(size);
            for (double& value : frame.back()) {
                value = static_cast<double>(pick(100));
            }
        }
        return frame;
    }

    void call() {
        auto& client = rig_.client;
        switch (pick(16)) {
            case 0:
                return client.setup();
            case 1:
                return client.tune("magnitude_phase_filter",
                                   PropertyList().addDouble("factor", pick(2) == 0 ? 1.0 : 2.0));
            case 2:
                return client.tune("channel_measurements_filter",
                                   PropertyList().addLogical("showSpectrogram", pick(2) == 0));
            case 3:
                return resize();
            case 4:
                return client.rollback(PropertyList().addDouble("rollbacktime", static_cast<double>(pick(20)) - 2.0));
            case 5:
                return client.reset();
            case 6:
                return client.setDisplaySpan(static_cast<double>(1 + pick(5000)));
            case 7:
                client.replay();
                return;
            case 8:
                return client.setReplaying(pick(2) == 0);
            case 9:
                return client.frameAsIs(randomFrame(true));
            case 10:
                return client.restart();
            default:
                return simulation_ ? simulate() : client.frame(randomFrame(false));
        }
    }

    void resize() {
        std::vector<int> channels;
        std::vector<int> sizes;
        for (const SignalFacts& signal : rig_.client.facts().signals) {
            channels.push_back(simulation_ ? signal.numChannels : static_cast<int>(2 * pick(4)));
            sizes.push_back(simulation_ ? signal.frameSize : static_cast<int>(pick(9)));
        }
        rig_.client.resize(channels, sizes);
        if (simulation_) {
            simulation_->setFrameSizes(std::vector<int>(sizes.size(), static_cast<int>(pick(5))));
        }
    }

    void simulate() {
        switch (pick(6)) {
            case 0:
                simulation_->stepBack();
                return;
            case 1:
                return pick(5) == 0 ? simulation_->restart(true) : simulation_->resume();
            case 2:
                return simulation_->pause();
            case 3:
                simulation_->step();
                return;
            default:
                simulation_->step();
                simulation_->deliver(1 + pick(3));
        }
    }

    void check() {
        rig_.client.updateNow();
        for (std::size_t s = 0; s < rig_.strategy->data.size() && kind_ != ChainKind::BlockflowSpectrum; ++s) {
            const auto blocks = static_cast<std::size_t>(rig_.strategy->numChannels[s]) + 1;
            const auto points = static_cast<std::size_t>(rig_.strategy->numPoints[s]);
            ASSERT_LE(blocks * points, rig_.strategy->data[s].size());
            ASSERT_LT(rig_.strategy->data[s].size(), blocks * (points + 1));
        }
    }

    std::mt19937 random_;
    ChainKind kind_;
    std::vector<int> counts_;
    double factor_ = 1.0;
    DriverRig rig_;
    std::unique_ptr<AnyInput> input_;
    std::unique_ptr<BlockflowSimulation> simulation_;
};

TEST(DriverRandom, AnyOrderOfCallsKeepsTheFormOfWhatTheStrategyGets) {
    for (const ChainKind kind : {ChainKind::Time, ChainKind::Spectrum, ChainKind::Frame, ChainKind::Response,
                                 ChainKind::BlockflowTime, ChainKind::BlockflowSpectrum}) {
        for (unsigned seed = 0; seed < 25; ++seed) {
            SCOPED_TRACE(std::string(chainKindName(kind)) + ", seed " + std::to_string(seed));
            RandomCalls(kind, seed).run(150);
        }
    }
}

TEST(DriverThreads, OperationsOfAClientRunOneAfterAnother) {
    DriverRig rig(factsOf(ChainKind::Time, {realSignal(1, 0.01, 8)}));
    rig.add("stage");
    rig.client.setup();
    const Buffers frame{std::vector<double>(8, 1.0)};
    const std::vector<std::function<void()>> jobs = {
        [&] { rig.client.frame(frame); },
        [&] { rig.client.updateDue() ? void(rig.client.update()) : void(rig.client.streamTime()); },
        [&] { rig.client.tune("stage", PropertyList().addDouble("x", 1.0)); },
        [&] {
            rig.client.query([](int, nbArray** plhs, int, const nbArray**) { plhs[0] = nbCreateDoubleScalar(1.0); });
        },
        [&] { rig.client.resize({1}, {8}); },
    };
    std::vector<std::thread> threads;
    for (const auto& job : jobs) {
        threads.emplace_back([&job] {
            for (int i = 0; i < 300; ++i) {
                job();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_DOUBLE_EQ(rig.client.streamTime(), 24.0);
}

}  // namespace
