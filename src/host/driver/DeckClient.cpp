#include "DeckClient.h"

#include <algorithm>
#include <boost/any.hpp>
#include <cmath>
#include <utility>

#include "ActionLists.h"
#include "Chain.h"
#include "Display.h"
#include "DriverError.h"
#include "FactsCheck.h"
#include "HistoryDisplay.h"
#include "LatestDisplay.h"
#include "SampleStream.h"
#include "SlotDisplay.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace wavedeck::driver {

namespace {

constexpr double defaultSpanPoints = 5000.0;  // what the plain cache of the time measurements holds

std::unique_ptr<Display> makeDisplay(const ClientFacts& facts, double span) {
    switch (facts.kind) {
        case ChainKind::Time:
        case ChainKind::BlockflowTime: {
            std::vector<std::size_t> capacities;
            for (const SignalFacts& signal : facts.signals) {
                capacities.push_back(displayCapacity(span, signal));
            }
            return std::make_unique<HistoryDisplay>(capacities);
        }
        case ChainKind::BlockflowSpectrum:
            return std::make_unique<SlotDisplay>(facts.signals.size());
        default:
            return std::make_unique<LatestDisplay>(facts.signals.size());
    }
}

}  // namespace

DeckClient::DeckClient(ClientFacts facts) : facts_(std::move(facts)), signalsAtFirst_(facts_.signals) {
    checkFacts(facts_);
    if (WaveDeckClientRegistry::sInstance.isClientValid(facts_.name)) {
        throw DriverError("there is a client \"" + facts_.name + "\" already");
    }
    displaySpan_ = facts_.displaySpan.value_or(defaultSpanPoints * facts_.signals.front().sampleTime);
    info_ = WaveDeckClientRegistry::sInstance.addClient(facts_.name);
    try {
        makeParts();
    } catch (...) {
        WaveDeckClientRegistry::sInstance.removeClient(facts_.name);
        throw;
    }
}

void DeckClient::makeParts() {
    publishFacts();
    publishSampleTimes();
    publishAxes();
    const std::size_t count = facts_.signals.size();
    const auto numPorts = std::count_if(facts_.signals.begin(), facts_.signals.end(),
                                        [](const SignalFacts& signal) { return signal.isInputPort; });
    stream_ = std::make_unique<SampleStream>(facts_, *info_, 2.0 * displaySpan_);
    chain_ =
        std::make_unique<Chain>(count, count - static_cast<std::size_t>(numPorts), [this] { return lineLength(); });
    display_ = makeDisplay(facts_, displaySpan_);
    for (const SignalFacts& signal : facts_.signals) {
        ids_.push_back(signal.id);
    }
    refreshForms();
}

DeckClient::~DeckClient() {
    for (const Stage& stage : chain_->stages()) {
        info_->setFilterImpl(stage.name, nullptr);
    }
    chain_.reset();
    strategy_.reset();
    WaveDeckClientRegistry::sInstance.removeClient(facts_.name);
}

void DeckClient::publishFacts() {
    std::vector<int> isComplex;
    std::vector<double> offsets;
    for (const SignalFacts& signal : facts_.signals) {
        isComplex.push_back(signal.isComplex ? 1 : 0);
        offsets.push_back(signal.offset);
    }
    info_->setIsComplex(std::move(isComplex));
    info_->setOffsets(std::move(offsets));
    info_->setTimeBased(facts_.timeBased);
    info_->setSimStartTime(facts_.startTime);
    info_->setSimulationTime(facts_.startTime);
    info_->setSimStopTime(facts_.stopTime);
    info_->setUsingStreamPlugInBF(facts_.kind == ChainKind::BlockflowSpectrum);
}

void DeckClient::publishSampleTimes() {
    std::vector<double> sampleTimes;
    for (const SignalFacts& signal : facts_.signals) {
        sampleTimes.push_back(signal.sampleTime);
    }
    info_->setSampleTimes(std::move(sampleTimes));
}

void DeckClient::publishAxes() {
    AxesTimeTable& table = info_->getClientSettings().axesTimeTable;
    table.clear();
    for (const auto& [id, axes] : facts_.axes) {
        table.set(id, axes);
    }
    if (facts_.axes.empty()) {
        table.set(0, AxesTime{facts_.startTime, displaySpan_, 0});
    }
}

void DeckClient::addStage(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> stage, PropertyList options) {
    const std::lock_guard lock(mutex_);
    chain_->add(name, stage, std::move(options));
    info_->setFilterImpl(name, std::move(stage));
}

void DeckClient::setStrategy(const std::string& name, std::shared_ptr<WaveDeckDataProcStrategy> strategy) {
    const std::lock_guard lock(mutex_);
    strategyName_ = name;
    strategy_ = std::move(strategy);
    strategy_->setClientID(facts_.name);
}

std::vector<std::string> DeckClient::stageNames() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names;
    for (const Stage& stage : chain_->stages()) {
        names.push_back(stage.name);
    }
    return names;
}

std::shared_ptr<WaveDeckTransformImpl> DeckClient::stage(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    return chain_->find(name).object;
}

ClientFacts DeckClient::facts() const {
    const std::lock_guard lock(mutex_);
    return facts_;
}

ActionContext DeckClient::context() const {
    return {facts_, stream_->numChannels(), stream_->frameSizes(), displaySpan_};
}

std::size_t DeckClient::lineLength() {
    if (!showsSpectrogram_) {
        return 0;
    }
    const auto* length = boost::any_cast<unsigned long>(info_->getClientSettings().find("spectrumLength"));
    return length ? *length : 0;
}

void DeckClient::refreshForms() {
    const std::vector<int>& raw = stream_->numChannels();
    outputChannels_.resize(raw.size());
    const auto* marks = boost::any_cast<std::vector<bool>>(info_->getClientSettings().find("magPhaseData"));
    const std::lock_guard lock(info_->channelSizeFactorsMutex);
    const std::vector<double>& factors = info_->channelSizeFactors;
    for (std::size_t s = 0; s < raw.size(); ++s) {
        const double factor = s < factors.size() ? factors[s] : 1.0;
        outputChannels_[s] = static_cast<int>(std::lround(raw[s] * factor));
        const bool isMagPhase = marks && s < marks->size() && (*marks)[s];
        display_->setForm(s, static_cast<std::size_t>(outputChannels_[s]), isMagPhase);
    }
}

}  // namespace wavedeck::driver
