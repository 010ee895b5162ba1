// A step of a simulation, and a step back and forward again, over a cache of 13 million samples, against the same over
// a cache of ten thousand: frames of 100 samples, and the statistics of the newest span of 1000.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "BFMeasurementsDataCacheFilter.h"
#include "BFTimeSignalStatisticsFilter.h"
#include "InterleavedComparison.h"
#include "MagPhaseFilter.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace {

using namespace dspwavedecks;
using streamplug::interfaces::device::PropertyList;

constexpr int frameSize = 100;
constexpr double sampleTime = 1e-6;
constexpr double spanLength = 1000 * sampleTime;

/// A client with a cache of so many samples, and what fills and measures it.
class Simulation {
public:
    Simulation(const std::string& name, unsigned long samples) : name_(name), cache_(samples) {
        info_ = wavedeck::WaveDeckClientRegistry::sInstance.addClient(name);
        info_->setIsComplex({0});
        info_->setSampleTimes({sampleTime});
        info_->setOffsets({0.0});
        auto& board = info_->getClientSettings();
        board.addCustomSetting(MagPhaseFilter::magPhaseData, std::vector<bool>{false});
        PropertyList setup;
        setup.addChar("action", "setup").addChar("clientID", name).addDouble("numSignals", 1);
        setup.addInts("numChannels", {1}).addInts("frameSize", {frameSize});
        setup.addDouble("customSpan", spanLength).addLogical("signalStatisticsEnabled", true);
        cache_.tuneImpl(setup);
        statistics_.tuneImpl(setup);
        // The cache is filled in a span that holds it all, and then shown in short ones that follow the newest sample.
        board.axesTimeTable.set(0, {0.0, 1e9, 0});
        while (frames_ * frameSize <= static_cast<long>(samples)) {
            cache(frames_++);
        }
        info_->setTimeSpanOneFramePeriod(true);
    }
    ~Simulation() { wavedeck::WaveDeckClientRegistry::sInstance.removeClient(name_); }
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    void step() {
        cache(frames_++);
        statistics_.setForceComputeSpan(true);
        statistics_.setInputLength(frame_.size());
        statistics_.filterImpl(frame_.data(), out_, 0);
    }

    void backAndForth() {
        --frames_;
        PropertyList list;
        list.addChar("action", "onRollback")
            .addDouble("rollbacktime", sampleTime * static_cast<double>(frames_ * frameSize - 1));
        cache_.rollbackImpl(list);
        step();
    }

private:
    void cache(long frame) {
        for (int i = 0; i < frameSize; ++i) {
            const auto index = static_cast<double>(frame * frameSize + i);
            frame_[static_cast<std::size_t>(i)] = index * sampleTime;
            frame_[static_cast<std::size_t>(frameSize + i)] = std::fmod(index, 37.0);
        }
        cache_.setInputLength(frame_.size());
        cache_.filterImpl(frame_.data(), out_, 0);
    }

    std::string name_;
    std::shared_ptr<wavedeck::WaveDeckClientInfo> info_;
    BFMeasurementsDataCacheFilter cache_;
    BFTimeSignalStatisticsFilter statistics_;
    long frames_ = 0;
    std::vector<double> frame_ = std::vector<double>(2 * frameSize);
    std::vector<double> out_;
};

/// Both caches are at their limits: the ratio says what the size costs, without the copies of a cache that grows.
template <void (Simulation::*step)()>
void overALargeCache(benchmark::State& state) {
    constexpr int repeats = 200;
    Simulation large("large", 13000000);
    Simulation small("small", 10000);
    const auto run = [](Simulation& simulation) {
        for (int i = 0; i < repeats; ++i) {
            (simulation.*step)();
        }
    };
    bench::compare(
        state, repeats * frameSize, [&] { run(large); }, [&] { run(small); });
}

BENCHMARK(overALargeCache<&Simulation::step>)->Name("Step")->UseManualTime()->Iterations(30);
BENCHMARK(overALargeCache<&Simulation::backAndForth>)->Name("BackAndForth")->UseManualTime()->Iterations(100);

}  // namespace
