#include "RandomClient.h"

#include <array>
#include <boost/any.hpp>
#include <cmath>
#include <exception>
#include <functional>

#include "Catalogue.h"
#include "ChainKind.h"
#include "LimitedAllocation.h"
#include "RandomOptions.h"

namespace fuzz {
namespace {

namespace catalogue = dspwavedecks::catalogue;
using catalogue::Chains;
using wavedeck::driver::ChainKind;

struct Deck {
    Chains chain;
    const char* strategy;
    bool isSimulation;
};

constexpr std::array decks{
    Deck{Chains::Time, "dsp_wavedeck_time_data_strategy", false},
    Deck{Chains::Spectrum, "dsp_wavedeck_frequency_data_strategy", false},
    Deck{Chains::Frame, "dsp_wavedeck_frame_data_strategy", false},
    Deck{Chains::Response, "magnitude_phase_response_data_strategy", false},
    Deck{Chains::BlockflowTime, "dsp_wavedeck_time_data_strategy", true},
    Deck{Chains::BlockflowSpectrum, "bf_dsp_wavedeck_frequency_data_strategy", true},
};

constexpr std::array queries{"getChannelMeasurementsDataImpl",
                             "getDistortionMeasurementsDataImpl",
                             "getNumSamplesProcessedImpl",
                             "getNumUpdatesProcessedImpl",
                             "getPeakFinderDataImpl",
                             "getPhaseNoiseDataImpl",
                             "getSimulationMetaDataImpl",
                             "getSimulationTimeImpl",
                             "getSpectralMaskStatusImpl",
                             "getSpectrumDataImpl",
                             "isNewChannelMeasurementsDataReadyImpl",
                             "isNewDataAvailableImpl",
                             "isNewDataReadyImpl",
                             "isNewDistortionMeasurementsDataReadyImpl",
                             "isNewPeakFinderDataReadyImpl",
                             "isNewPhaseNoiseDataReadyImpl",
                             "isNewSpectralMaskTesterDataReadyImpl",
                             "resetCachedNumSamplesProcessedImpl"};

constexpr std::array sampleCounts{0, 1, 2, 3, 7, 16, 33, 64};

}  // namespace

const wavedeck::driver::StageLibrary& stageLibrary() {
    static const wavedeck::driver::StageLibrary library(STAGE_LIBRARY);
    return library;
}

RandomClient::RandomClient(InputBytes& input) : input_(input) {
    const Deck& deck = input.oneOf(decks);
    facts_.name = "fuzz";
    facts_.kind = wavedeck::driver::chainKindOf(deck.strategy, deck.isSimulation);
    const std::size_t numSignals = 1 + input.below(3);
    for (std::size_t i = 0; i < numSignals; ++i) {
        wavedeck::driver::SignalFacts signal;
        signal.id = std::to_string(i);
        signal.isComplex = input.flag();
        signal.numChannels = static_cast<int>(input.below(4)) * (signal.isComplex ? 2 : 1);
        signal.sampleTime = input.flag() ? 0.001 : std::abs(input.number());
        signal.frameSize = input.oneOf(sampleCounts);
        facts_.signals.push_back(signal);
        numChannels_.push_back(signal.numChannels);
        frameSizes_.push_back(signal.frameSize);
    }
    facts_.timeBased = input.flag();
    client_ = std::make_unique<wavedeck::driver::DeckClient>(facts_);
    for (const auto& stage : catalogue::stages) {
        if (stage.kind == catalogue::StageKind::Filter && catalogue::intersects(stage.chains, deck.chain)) {
            stages_.emplace_back(stage.name);
        }
    }
    addStages();
    client_->setStrategy(deck.strategy, stageLibrary().makeStrategy(deck.strategy));
    client_->setKeepOutputs(input.flag());
}

void RandomClient::addStages() {
    for (const auto& name : stages_) {
        streamplug::interfaces::device::PropertyList options;
        for (const auto* option : catalogue::findStage(name)->options) {
            // Measurements are on, or few of them would be seen.
            if (option->name.ends_with("Enabled") && option->kind == catalogue::Kind::Logical) {
                options.addLogical(std::string(option->name), true);
            }
        }
        client_->addStage(name, stageLibrary().makeFilter(name), options);
    }
}

void RandomClient::play(const std::uint8_t* data, std::size_t size, const std::vector<Call>& calls) {
    constexpr int mostCalls = 200;
    const testsupport::AllocationLimit limit;
    InputBytes input(data, size);
    const auto attempt = [](const auto& action) {
        try {
            action();
        } catch (const std::exception&) {
            return;
        }
    };
    attempt([&] {
        RandomClient client(input);
        attempt([&] { client.client_->setup(); });
        for (int i = 0; i < mostCalls && !input.isEmpty(); ++i) {
            attempt([&] { (client.*input.oneOf(calls))(); });
        }
    });
}

std::string RandomClient::randomStage() {
    return input_.oneOf(stages_);
}

void RandomClient::tune() {
    const std::string stage = randomStage();
    const auto options = randomOptions(input_, catalogue::findStage(stage)->options);
    input_.byte() < 240 ? client_->tune(stage, options) : client_->setup(stage, options);
}

void RandomClient::sendAsIs() {
    static constexpr std::array actions{"setup", "tune", "onInputSizeChange", "onRollback", "?"};
    const std::string stage = randomStage();
    streamplug::interfaces::device::PropertyList list;
    if (input_.flag()) {
        list.addChar("action", input_.oneOf(actions)).addChar("clientID", facts_.name);
    }
    client_->sendAsIs(stage, list.append(randomOptions(input_, catalogue::findStage(stage)->options)));
}

std::vector<double> RandomClient::samples(std::size_t count) {
    std::vector<double> values(count);
    if (input_.flag()) {
        return input_.numbers(count);
    }
    // A waveform by three bytes leaves the rest of the input to other calls.
    const double step = input_.byte() / 40.0;
    const double size = input_.number();
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = std::sin(step * static_cast<double>(i)) * size;
    }
    return values;
}

void RandomClient::frame() {
    std::vector<std::vector<double>> signals;
    const bool isSimulation = wavedeck::driver::isBlockflow(facts_.kind);
    for (std::size_t s = 0; s < numChannels_.size(); ++s) {
        const auto channels = static_cast<std::size_t>(numChannels_[s]);
        std::size_t points = static_cast<std::size_t>(input_.oneOf(sampleCounts));
        std::size_t times = 0;
        if (isSimulation) {
            times = input_.below(4);
            points = times * static_cast<std::size_t>(frameSizes_[s]);
        }
        signals.push_back(samples(times + channels * points));
    }
    isSimulation ? client_->simulationFrame(signals) : client_->frame(signals);
}

void RandomClient::frameAsIs() {
    std::vector<std::vector<double>> signals;
    for (std::size_t s = 0; s < numChannels_.size(); ++s) {
        signals.push_back(samples(input_.below(100)));
    }
    client_->isReplaying() ? void(client_->replayAsIs(signals)) : client_->frameAsIs(signals);
}

void RandomClient::replay() {
    client_->replay();
    client_->setReplaying(input_.flag());
}

void RandomClient::update() {
    const auto update = input_.flag() ? client_->update() : client_->updateNow();
    if (!update.message.isNull()) {
        messageText_.write(*update.message);
    }
}

void RandomClient::reset() {
    input_.flag() ? client_->reset() : client_->restart();
}

void RandomClient::setup() {
    client_->setup();
}

void RandomClient::query() {
    const auto function = stageLibrary().query(input_.oneOf(queries));
    if (input_.byte() < 230) {
        client_->query(function);
        return;
    }
    // An argument that names no client.
    const wavedeck::driver::QueryValue argument(input_.flag() ? nbCreateDoubleScalar(1.0) : nbCreateString("?"));
    const nbArray* arguments[] = {argument.get()};
    nbArray* result = nullptr;
    try {
        function(1, &result, 1, arguments);
    } catch (const std::exception&) {
    }
    nbDestroyArray(result);
}

void RandomClient::resize() {
    std::vector<int> channels;
    std::vector<int> sizes;
    for (const auto& signal : facts_.signals) {
        channels.push_back(static_cast<int>(input_.below(4)) * (signal.isComplex ? 2 : 1));
        sizes.push_back(input_.oneOf(sampleCounts));
    }
    client_->resize(channels, sizes);
    numChannels_ = channels;
    frameSizes_ = sizes;
}

void RandomClient::rollback() {
    streamplug::interfaces::device::PropertyList options;
    if (input_.flag()) {
        options.addDouble("rollbacktime", input_.number());
    }
    client_->rollback(options);
}

void RandomClient::writeBoard() {
    std::vector<std::string> keys;
    client_->withInfo([&](wavedeck::WaveDeckClientInfo& info) { keys = info.getClientSettings().keys(); });
    for (const char* host : {"timeRange", "magPhaseData", "rbw", "spectrumLength", "inputPortRBW", "vbw",
                             "inputPortFrequencyVector", "thinnedSpectrumLength", "dataStorageFilterUtils"}) {
        keys.emplace_back(host);
    }
    const std::string key = input_.oneOf(keys);
    const std::function<boost::any()> values[] = {
        [&] { return boost::any(input_.number()); },
        [&] { return boost::any(static_cast<int>(input_.below(400)) - 3); },
        [&] { return boost::any(static_cast<unsigned long>(input_.below(400))); },
        [&] { return boost::any(input_.flag()); },
        [&] { return boost::any(input_.numbers(input_.below(6))); },
        [&] { return boost::any(std::vector<bool>(input_.below(6), input_.flag())); },
        [&] { return boost::any(std::string("text")); },
        [&] {
            return boost::any(
                wavedeck::DataStorageFilterUtils{input_.numbers(input_.below(4)), input_.flag(), input_.flag()});
        },
    };
    const boost::any value = values[input_.below(std::size(values))]();
    client_->withInfo(
        [&](wavedeck::WaveDeckClientInfo& info) { info.getClientSettings().addCustomSetting(key, value); });
}

void RandomClient::changeClient() {
    const std::uint8_t which = input_.byte();
    const double value = input_.number();
    const bool on = input_.flag();
    if (which % 8 == 0) {
        client_->setDisplaySpan(value);
        return;
    }
    client_->withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const std::function<void()> changes[] = {
            [&] { info.setSimulationTime(value); },
            [&] { info.setSimStartTime(value); },
            [&] { info.setSimStopTime(value); },
            [&] { info.setTimeBased(on); },
            [&] { info.setFastRestart(on); },
            [&] { info.setTimeSpanOneFramePeriod(on); },
            [&] {
                info.getClientSettings().axesTimeTable.set(0, {value, value, on ? 1UL : 0UL});
            },
        };
        changes[which % 8 - 1]();
    });
}

}  // namespace fuzz
