#include <algorithm>

#include "ActionLists.h"
#include "Chain.h"
#include "DeckClient.h"
#include "Display.h"
#include "FactsCheck.h"
#include "HistoryDisplay.h"
#include "SampleStream.h"

namespace wavedeck::driver {

void DeckClient::act(Stage& stage, const PropertyList& list, const Action& action) {
    if (const auto shows = logicalOption(list, "showSpectrogram")) {
        showsSpectrogram_ = *shows;
    }
    try {
        action(*stage.object);
    } catch (...) {
        finishAction(stage);  // what the stage did before it threw stands
        throw;
    }
    finishAction(stage);
}

void DeckClient::finishAction(const Stage& stage) {
    refreshForms();
    if (!stage.object->isReadOnly()) {
        display_->dropOutputs();
    }
}

void DeckClient::setUp(Stage& stage) {
    stage.isSetUp = false;
    const PropertyList list = setupList(context(), stage, stage.options);
    act(stage, list, [&](WaveDeckTransformImpl& object) { object.tuneImpl(list); });
    stage.isSetUp = true;
}

void DeckClient::beginStream() {
    stream_->restart();
    display_->dropAll();
    updatePeriods_ = 0;
    isNew_ = false;
}

void DeckClient::setup() {
    const std::lock_guard lock(mutex_);
    if (!info_->isDataSourceRepository()) {
        beginStream();
    }
    for (Stage& stage : chain_->stages()) {
        stage.isSetUp = false;
    }
    for (Stage& stage : chain_->stages()) {
        setUp(stage);
    }
}

void DeckClient::setup(const std::string& name, const PropertyList& options) {
    const std::lock_guard lock(mutex_);
    Stage& stage = chain_->find(name);
    stage.options = options;
    setUp(stage);
}

void DeckClient::tune(const std::string& name, const PropertyList& options) {
    const std::lock_guard lock(mutex_);
    send(chain_->find(name), tuneList(context(), options));
}

void DeckClient::sendAsIs(const std::string& name, const PropertyList& list) {
    const std::lock_guard lock(mutex_);
    send(chain_->find(name), list);
}

void DeckClient::send(Stage& stage, const PropertyList& list) {
    act(stage, list, [&](WaveDeckTransformImpl& object) { object.tuneImpl(list); });
}

void DeckClient::resize(const std::vector<int>& numChannels, const std::vector<int>& frameSizes) {
    const std::lock_guard lock(mutex_);
    changeSizes(numChannels, frameSizes);
}

void DeckClient::resizeFrames(const std::vector<int>& frameSizes) {
    const std::lock_guard lock(mutex_);
    changeSizes(std::vector<int>(stream_->numChannels()), frameSizes);
}

void DeckClient::changeSizes(const std::vector<int>& numChannels, const std::vector<int>& frameSizes) {
    checkSizes(facts_, numChannels, frameSizes);
    for (std::size_t s = 0; s < facts_.signals.size(); ++s) {
        SignalFacts& signal = facts_.signals[s];
        const SignalFacts& atFirst = signalsAtFirst_[s];
        if (isBlockflow(facts_.kind) && frameSizes[s] > 0 && atFirst.frameSize > 0) {
            signal.sampleTime = atFirst.sampleTime * (static_cast<double>(atFirst.frameSize) / frameSizes[s]);
        }
        signal.numChannels = numChannels[s];
        signal.frameSize = frameSizes[s];
    }
    publishSampleTimes();
    stream_->resize(numChannels, frameSizes);
    for (Stage& stage : chain_->stages()) {
        send(stage, sizeList(context(), stage));
    }
}

void DeckClient::rollback(const PropertyList& options) {
    const std::lock_guard lock(mutex_);
    if (const auto time = doubleOption(options, "rollbacktime")) {
        stream_->rewind(*time);
        display_->dropNewerThan(*time);
        updatePeriods_ = std::min(updatePeriods_, periodsReached());
    }
    const PropertyList list = rollbackList(context(), options);
    for (Stage& stage : chain_->stages()) {
        act(stage, list, [&](WaveDeckTransformImpl& object) { object.rollbackImpl(list); });
    }
}

void DeckClient::rollback(const std::string& name, const PropertyList& options) {
    const std::lock_guard lock(mutex_);
    const PropertyList list = rollbackList(context(), options);
    act(chain_->find(name), list, [&](WaveDeckTransformImpl& object) { object.rollbackImpl(list); });
}

void DeckClient::reset() {
    const std::lock_guard lock(mutex_);
    resetStages();
}

void DeckClient::resetStages() {
    for (Stage& stage : chain_->stages()) {
        act(stage, {}, [](WaveDeckTransformImpl& object) { object.resetImpl(); });
    }
}

void DeckClient::restart() {
    const std::lock_guard lock(mutex_);
    info_->setIsDataSourceRepository(false);
    beginStream();
    resetStages();
}

void DeckClient::reset(const std::string& name) {
    const std::lock_guard lock(mutex_);
    act(chain_->find(name), {}, [](WaveDeckTransformImpl& object) { object.resetImpl(); });
}

void DeckClient::setDisplaySpan(double seconds) {
    const std::lock_guard lock(mutex_);
    displaySpan_ = seconds;
    facts_.displaySpan = seconds;
    for (auto& [id, axes] : facts_.axes) {
        axes.timeSpan = seconds;
    }
    publishAxes();
    stream_->setHistorySpan(2.0 * seconds);
    for (std::size_t s = 0; s < facts_.signals.size(); ++s) {
        display_->reserve(s, displayCapacity(seconds, facts_.signals[s]));
    }
    for (Stage& stage : chain_->stages()) {
        if (stage.name == "magnitude_phase_filter" && stage.isSetUp) {
            const std::vector<double> ranges(facts_.signals.size(), seconds);
            send(stage, tuneList(context(), PropertyList().addDoubles("timeRange", ranges)));
        }
    }
}

}  // namespace wavedeck::driver
