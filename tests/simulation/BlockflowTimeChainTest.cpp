// The time chain of a simulation under the driver: it measures what the chain of a stream measures, tells when its
// cache is full, and is held by its pacer while the display is behind.

#include "BFBilevelMeasurementsFilter.h"
#include "BFMeasurementsDataCacheFilter.h"
#include "BFSimulationMetaDataFilter.h"
#include "BFSimulationPacerFilter.h"
#include "BFTimePeakFinderFilter.h"
#include "BFTimeSignalStatisticsFilter.h"
#include "BFTriggerFilter.h"
#include "DriverTest.h"
#include "MagPhaseFilter.h"
#include "TimeDataStrategy.h"

namespace {

/// Two channels, pulses of a period of 37 ms and the same turned over and five times as large, for a number of steps.
class Pulses : public SimulationInput {
public:
    explicit Pulses(std::size_t steps) : steps_(steps) {}

    bool read(std::size_t, std::size_t frameSize, Values& frame) override {
        frame.resize(2 * frameSize);
        for (std::size_t i = 0; i < frameSize; ++i) {
            const auto phase = static_cast<double>((next_ + i) % 37);
            frame[i] = std::clamp(std::min(phase - 5.0, 20.0 - phase), 0.0, 3.0) + 0.001 * phase;
            frame[frameSize + i] = -5.0 * frame[i];
        }
        next_ += frameSize;
        return steps_-- > 0;
    }
    void restart() override { next_ = 0; }

private:
    std::size_t steps_;
    std::size_t next_ = 0;
};

/// A client of one signal at 1 kHz in frames of `frameSize`, with the measurements of a stream or of a simulation.
struct TimeChain {
    TimeChain(ChainKind kind, int frameSize, double span, const PropertyList& measured = {},
              unsigned long limit = 13107200)
        : client(facts(kind, frameSize, span)) {
        if (kind == ChainKind::Time) {
            add<SimulationMetaDataFilter>("simulation_meta_data_filter", {});
            add<MagPhaseFilter>("magnitude_phase_filter", {});
            add<MeasurementsDataCacheFilter>("dsp_wavedeck_measurements_data_cache_filter", measured);
            addMeasurements<TimeSignalStatisticsFilter, TimePeakFinderFilter, BilevelMeasurementsFilter>("", span,
                                                                                                         measured);
        } else {
            add<BFSimulationMetaDataFilter>("bf_simulation_meta_data_filter", {});
            add<BFSimulationPacerFilter>("bf_simulation_pacer_filter", {});
            add<MagPhaseFilter>("magnitude_phase_filter", {});
            client.addStage("bf_wavedeck_measurements_data_cache_filter",
                            std::make_shared<BFMeasurementsDataCacheFilter>(limit), measured);
            addMeasurements<BFTimeSignalStatisticsFilter, BFTimePeakFinderFilter, BFBilevelMeasurementsFilter>(
                "bf_", span, measured);
        }
        client.setStrategy("dsp_wavedeck_time_data_strategy", std::make_shared<TimeDataStrategy>());
        client.setup();
    }

    static ClientFacts facts(ChainKind kind, int frameSize, double span) {
        ClientFacts facts;
        facts.name = "time chain";
        facts.kind = kind;
        facts.signals = {{"a", 2, false, 0.001, 0.25, frameSize, false}};
        facts.displaySpan = span;
        return facts;
    }

    template <class Filter>
    void add(const std::string& name, const PropertyList& options) {
        client.addStage(name, std::make_shared<Filter>(), options);
    }
    template <class Statistics, class Peaks, class Bilevel>
    void addMeasurements(const std::string& prefix, double span, PropertyList options) {
        options.addDouble("customSpan", span)
            .append(optionList("signalStatisticsEnabled=true peakFinderEnabled=true numPeaks=5 "
                               "bilevelMeasurementsEnabled=true showTransitions=true showCycles=true "
                               "showAberrations=true"));
        add<Statistics>(prefix + "time_signal_statistics_filter", options);
        add<Peaks>(prefix + "time_peak_finder_filter", options);
        add<Bilevel>(prefix + "bilevel_measurements_filter", options);
    }

    Poco::JSON::Object::Ptr message() { return client.updateNow().message; }

    /// Measurements and samples of the message, as text without the figures that only one of the two has.
    std::string measured() {
        auto update = message();
        auto measurements = update->getObject("measurements");
        EXPECT_EQ(measurements->getObject("stats")->getValue<std::string>("timeRange").empty(),
                  client.facts().kind == ChainKind::Time);
        measurements->getObject("stats")->remove("timeRange");
        update->remove("simulation");
        measurements->remove("isMaximumCacheMemoryUsed");
        return MessageText().write(*update);
    }

    DeckClient client;
};

TEST(BlockflowTimeChain, MeasuresWhatThatOfAStreamMeasures) {
    const PropertyList second = optionList("measurementChannel=1");
    const struct {
        int frameSize;
        std::size_t steps;
        const PropertyList& measured;
    } cases[] = {{100, 40, {}}, {100, 40, second}, {1, 700, {}}, {1, 700, second}};
    for (const auto& [frameSize, steps, measured] : cases) {
        // Both look at all that came: the one while its span is longer, the other in its first span.
        const double span = 0.001 * static_cast<double>(steps) * frameSize;
        std::string texts[2];
        for (const ChainKind kind : {ChainKind::Time, ChainKind::BlockflowTime}) {
            TimeChain chain(kind, frameSize, span, measured);
            Pulses input(steps);
            if (kind == ChainKind::Time) {
                for (Values frame; input.read(0, static_cast<std::size_t>(frameSize), frame);) {
                    chain.client.frame({frame});
                }
            } else {
                BlockflowSimulation simulation(chain.client, input);
                while (simulation.step() == StepResult::Stepped) {
                    simulation.deliver();
                }
                EXPECT_EQ(simulation.stepsTaken(), steps);
            }
            texts[kind == ChainKind::Time ? 0 : 1] = chain.measured();
        }
        EXPECT_EQ(texts[0], texts[1]);
        EXPECT_NE(texts[0].find("\"posEdges\":\""), std::string::npos);
        EXPECT_EQ(texts[0].find("\"posEdges\":\"nan\""), std::string::npos);
    }
}

TEST(BlockflowTimeChain, TellsThatItsCacheMayNotGrow) {
    TimeChain chain(ChainKind::BlockflowTime, 100, 100.0, {}, 5200);
    Pulses input(60);
    BlockflowSimulation simulation(chain.client, input);
    const auto isFull = [&] {
        return chain.message()->getObject("measurements")->getValue<bool>("isMaximumCacheMemoryUsed");
    };
    for (int step = 1; step <= 60; ++step) {
        simulation.step();
        simulation.deliver();
        ASSERT_EQ(isFull(), step > 51) << step;  // grown to 5125, and 5253 were next
    }
    simulation.restart(true);
    input.restart();
    EXPECT_FALSE([&] {
        simulation.step();
        simulation.deliver();
        return isFull();
    }());
}

TEST(BlockflowTimeChain, ASlowDisplayHoldsTheSimulationAndItGoesOn) {
    TimeChain chain(ChainKind::BlockflowTime, 10, 1.0);
    Pulses input(400);
    BlockflowSimulation simulation(chain.client, input);
    // A display that takes a step for every two that could be made.
    std::size_t furthest = 0;
    int held = 0;
    StepResult result = StepResult::Stepped;
    while (result != StepResult::Ended) {
        for (int i = 0; i < 2; ++i) {
            result = simulation.step();
            held += result == StepResult::Held ? 1 : 0;
        }
        furthest = std::max(furthest, simulation.waiting());
        simulation.deliver(1);
    }
    // 10 % of the time that was shown, and the steps up to the frame that acts on it.
    EXPECT_GT(held, 100);
    EXPECT_GT(furthest, 20U);
    EXPECT_LT(furthest, 50U);
    EXPECT_EQ(simulation.stepsTaken(), 400U);
    while (simulation.waiting() > 0) {
        simulation.deliver(1);
    }
    EXPECT_EQ(chain.message()->getObject("simulation")->getValue<unsigned long>("samplesProcessed"), 8000U);
}

}  // namespace
