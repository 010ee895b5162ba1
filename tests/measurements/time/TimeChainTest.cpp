// The stages of the time chain under the driver, with the time strategy: one span for picture and figures.

#include "DriverTest.h"

namespace {

double number(const Poco::JSON::Object::Ptr& object, const char* key) {
    return std::stod(object->getValue<std::string>(key));
}

// A noisy square wave of 10 Hz that rises in 4 ms, from 0.2 to 1.2: picture, statistics, peaks, pulses and trigger are
// those of the last second shown.
TEST(TimeChain, pictureAndFiguresCoverOneSpan) {
    constexpr double interval = 1e-3;
    constexpr double offset = 50.0;
    constexpr double spread = 0.01;
    ClientFacts facts = factsOf(ChainKind::Time, {{"a", 1, false, interval, offset, 97, false}});
    facts.displaySpan = 1.0;
    DeckClient client(facts);
    for (const char* stage : {"simulation_meta_data_filter", "magnitude_phase_filter",
                              "dsp_wavedeck_measurements_data_cache_filter", "time_signal_statistics_filter",
                              "time_peak_finder_filter", "bilevel_measurements_filter", "trigger_filter"}) {
        // Every stage is sent the options of all: each takes its own.
        client.addStage(
            stage, stageLibrary().makeFilter(stage),
            optionList("signalStatisticsEnabled=true peakFinderEnabled=true bilevelMeasurementsEnabled=true "
                       "showTransitions=true showAberrations=true showCycles=true triggerEnabled=true hysteresis=0.2"));
    }
    client.setStrategy("dsp_wavedeck_time_data_strategy",
                       stageLibrary().makeStrategy("dsp_wavedeck_time_data_strategy"));
    client.setup();
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0.0, spread);
    long index = 0;
    int triggered = 0;
    for (int frame = 0; frame < 80; ++frame) {
        Values samples;
        for (int i = 0; i < 97; ++i, ++index) {
            const double phase = static_cast<double>(index % 100) * interval;
            const double level = std::clamp(std::min(phase, 0.05 - phase) / 4e-3 + 0.5, 0.0, 1.0);
            samples.push_back(0.2 + (phase < 0.075 ? level : std::clamp((phase - 0.1) / 4e-3 + 0.5, 0.0, 1.0)) +
                              noise(random));
        }
        client.frame({samples});
        if (!client.updateDue()) {
            continue;
        }
        const auto message = client.updateNow().message;
        const double last = static_cast<double>(index - 1) * interval;
        const auto measurements = message->getObject("measurements");
        const auto isInSpan = [&](double time) { return time >= last - 1.0 - 1e-9 + offset && time <= last + offset; };
        if (last < 2.0) {
            continue;  // the span fills
        }
        const auto stats = measurements->getObject("stats");
        EXPECT_NEAR(number(stats, "mean"), 0.7, 0.01);  // ten periods, and one sample of 1000 more
        EXPECT_TRUE(isInSpan(number(stats, "xMin")) && isInSpan(number(stats, "xMax")));
        const auto peaks = measurements->getObject("peaks");
        EXPECT_EQ(peaks->getValue<int>("numPeaks"), 3);
        EXPECT_TRUE(isInSpan(std::stod(peaks->getValue<std::string>("locations").substr(1))));
        const auto pulses = measurements->getObject("bilevel");
        EXPECT_NEAR(number(pulses, "period"), 0.1, 5e-5);  // a crossing errs by noise over slope: 0.04 ms / sqrt(9 / 2)
        EXPECT_NEAR(number(pulses, "posEdges") + number(pulses, "negEdges"), 20.0, 1.0);
        EXPECT_NEAR(number(pulses, "posWidth"), 0.05, 1e-4);
        EXPECT_NEAR(number(pulses, "amplitude"), 1.0, 0.05);
        EXPECT_FALSE(measurements->has("isMaximumCacheMemoryUsed"));  // the plain cache has no limit to tell

        const auto trigger = measurements->getObject("trigger");
        if (!trigger->getValue<bool>("triggerFound")) {
            continue;
        }
        ++triggered;
        EXPECT_NEAR(number(trigger, "endTime") - number(trigger, "startTime"), 1.0, 1e-12);
        const double position = number(trigger, "position");
        EXPECT_NEAR(position, std::round(position * 10.0) / 10.0, 3e-4);  // on a rising edge, give or take the noise
        const auto time =
            message->getArray("signals")->getObject(0)->getArray("channel")->getObject(0)->getArray("time");
        ASSERT_NEAR(static_cast<double>(time->size()), 1000.0, 1.0);
        EXPECT_NEAR(time->getElement<double>(0), number(trigger, "startTime"), interval);
        EXPECT_LT(time->getElement<double>(static_cast<unsigned>(time->size()) - 1), number(trigger, "endTime"));
    }
    EXPECT_GE(triggered, 5);
}

}  // namespace
