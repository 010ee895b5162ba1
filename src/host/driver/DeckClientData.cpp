#include <algorithm>
#include <array>

#include "Chain.h"
#include "DeckClient.h"
#include "Display.h"
#include "DriverError.h"
#include "SampleStream.h"

namespace wavedeck::driver {

namespace {

constexpr std::size_t mostQueryResults = 16;

/// Board entries without which a strategy cannot make a message.
struct NeededEntry {
    const char* strategy;
    const char* key;
};
constexpr std::array neededEntries{
    NeededEntry{"dsp_wavedeck_time_data_strategy", "magPhaseData"},
    NeededEntry{"dsp_wavedeck_time_data_strategy", "timeRange"},
    NeededEntry{"dsp_wavedeck_frame_data_strategy", "magPhaseData"},
};

}  // namespace

void DeckClient::requireReady(std::size_t numSignals) const {
    for (const Stage& stage : chain_->stages()) {
        if (!stage.isSetUp) {
            throw DriverError("stage \"" + stage.name + "\" was not set up");
        }
    }
    if (numSignals != stream_->numSignals()) {
        throw DriverError("a frame of client \"" + facts_.name + "\" has " + std::to_string(stream_->numSignals()) +
                          " signals, not " + std::to_string(numSignals));
    }
}

DeckClient::Signals DeckClient::spansOf(const std::vector<std::vector<double>>& signals) {
    spans_.assign(signals.begin(), signals.end());
    return spans_;
}

void DeckClient::takeFrame(Signals signals, FrameSource source) {
    requireReady(signals.size());
    if (isBlockflow(facts_.kind)) {
        throw DriverError("client \"" + facts_.name + "\" takes the frames of a simulation");
    }
    for (std::size_t s = 0; s < signals.size(); ++s) {
        stream_->checkFrame(s, signals[s]);  // all of them before any is taken
    }
    endReplayFor(source);
    for (std::size_t s = 0; s < signals.size(); ++s) {
        stream_->take(s, signals[s], source);
    }
}

void DeckClient::takeBuffers(const std::vector<std::vector<double>>& buffers, FrameSource source) {
    requireReady(buffers.size());
    endReplayFor(source);
    for (std::size_t s = 0; s < buffers.size(); ++s) {
        stream_->takeAsIs(s, buffers[s], source);
    }
}

void DeckClient::endReplayFor(FrameSource source) {
    if (source == FrameSource::Stream && info_->isDataSourceRepository()) {
        info_->setIsDataSourceRepository(false);
        display_->endReplay();
    }
}

void DeckClient::frame(std::span<const std::span<const double>> signals) {
    const std::lock_guard lock(mutex_);
    takeFrame(signals, FrameSource::Stream);
    runChain(FrameSource::Stream);
}

void DeckClient::frame(const std::vector<std::vector<double>>& signals) {
    const std::lock_guard lock(mutex_);
    takeFrame(spansOf(signals), FrameSource::Stream);
    runChain(FrameSource::Stream);
}

void DeckClient::frameAsIs(const std::vector<std::vector<double>>& buffers) {
    const std::lock_guard lock(mutex_);
    takeBuffers(buffers, FrameSource::Stream);
    runChain(FrameSource::Stream);
}

void DeckClient::simulationFrame(const std::vector<std::vector<double>>& heads) {
    const std::lock_guard lock(mutex_);
    requireReady(heads.size());
    if (!isBlockflow(facts_.kind)) {
        throw DriverError("client \"" + facts_.name + "\" takes no frames of a simulation");
    }
    for (std::size_t s = 0; s < heads.size(); ++s) {
        stream_->checkHead(s, heads[s]);
    }
    endReplayFor(FrameSource::Stream);
    for (std::size_t s = 0; s < heads.size(); ++s) {
        stream_->takeHead(s, heads[s], FrameSource::Stream);
    }
    runChain(FrameSource::Stream);
}

void DeckClient::setReplaying(bool replaying) {
    const std::lock_guard lock(mutex_);
    info_->setIsDataSourceRepository(replaying);
    if (!replaying) {
        display_->endReplay();
    }
}

bool DeckClient::isReplaying() const {
    return info_->isDataSourceRepository();
}

bool DeckClient::replay() {
    const std::lock_guard lock(mutex_);
    requireReady(stream_->numSignals());
    info_->setIsDataSourceRepository(true);
    for (std::size_t s = 0; s < stream_->numSignals(); ++s) {
        stream_->takeStored(s);
    }
    return runChain(FrameSource::Replay);
}

bool DeckClient::replay(const std::vector<std::vector<double>>& signals) {
    const std::lock_guard lock(mutex_);
    takeFrame(spansOf(signals), FrameSource::Replay);
    info_->setIsDataSourceRepository(true);
    return runChain(FrameSource::Replay);
}

bool DeckClient::replayAsIs(const std::vector<std::vector<double>>& buffers) {
    const std::lock_guard lock(mutex_);
    takeBuffers(buffers, FrameSource::Replay);
    info_->setIsDataSourceRepository(true);
    return runChain(FrameSource::Replay);
}

bool DeckClient::runChain(FrameSource source) {
    std::vector<SignalFrame>& signals = stream_->signals();
    chain_->run(signals, outputChannels_);
    const std::size_t length = lineLength();
    for (std::size_t s = 0; s < signals.size(); ++s) {
        SignalFrame& signal = signals[s];
        if (!signal.hasNews || signal.raw.empty()) {
            continue;
        }
        if (!signal.current) {
            signal.blocks.assign(signal.raw.begin(), signal.raw.end());
            signal.current = &signal.blocks;
        }
        if (source == FrameSource::Stream) {
            stream_->noteOutput(s);
        }
        std::vector<double>* output = signal.current;
        if (keepsOutputs_) {
            kept_ = *output;  // the display may swap what it is given
            output = &kept_;
        }
        display_->take(
            s, DisplayInput{*output, static_cast<std::size_t>(outputChannels_[s]),
                            static_cast<std::size_t>(stream_->frameSize(s)), length, source == FrameSource::Replay});
        isNew_ = true;
    }
    if (source == FrameSource::Replay && !info_->isDataSourceRepository()) {
        display_->endReplay();
    }
    return info_->isDataSourceRepository();
}

std::uint64_t DeckClient::periodsReached() const {
    const double periods = (stream_->time() - facts_.startTime) * facts_.updatesPerSecond;
    // The product may fall short of a whole number by rounding.
    return periods > 0.0 ? static_cast<std::uint64_t>(std::min(periods * (1.0 + 1e-12), 1e18)) : 0;
}

bool DeckClient::updateDue() const {
    const std::lock_guard lock(mutex_);
    return periodsReached() > updatePeriods_;
}

double DeckClient::streamTime() const {
    const std::lock_guard lock(mutex_);
    return stream_->time();
}

Update DeckClient::update() {
    const std::lock_guard lock(mutex_);
    return makeUpdate(false);
}

Update DeckClient::updateNow() {
    const std::lock_guard lock(mutex_);
    return makeUpdate(true);
}

void DeckClient::requireBoardEntries() const {
    for (const NeededEntry& entry : neededEntries) {
        if (strategyName_ == entry.strategy && !info_->getClientSettings().find(entry.key)) {
            throw DriverError(std::string("the strategy needs the board entry \"") + entry.key +
                              "\": a chain with it holds \"magnitude_phase_filter\"");
        }
    }
}

Update DeckClient::makeUpdate(bool always) {
    if (!strategy_) {
        throw DriverError("client \"" + facts_.name + "\" has no strategy");
    }
    updatePeriods_ = std::max(updatePeriods_, periodsReached());
    if (!isNew_ && !always) {
        return {strategy_->getNoDataEventName(), nullptr};
    }
    requireReady(stream_->numSignals());
    requireBoardEntries();
    display_->layOut();
    Update update{strategy_->getUpdateEventName(), new Poco::JSON::Object};
    strategy_->processDataAllSignals(display_->data(), static_cast<int>(ids_.size()), display_->numChannels(),
                                     display_->numPoints(), ids_, update.message);
    display_->noteSeen();
    isNew_ = false;
    return update;
}

std::vector<QueryValue> DeckClient::query(NbFunction function) {
    const std::lock_guard lock(mutex_);
    const QueryValue clientID(nbCreateString(facts_.name.c_str()));
    const nbArray* arguments[] = {clientID.get()};
    nbArray* results[mostQueryResults] = {};
    std::vector<QueryValue> values;
    const auto own = [&] {
        for (nbArray*& result : results) {
            if (result) {
                values.emplace_back(result);
            }
        }
    };
    try {
        function(static_cast<int>(mostQueryResults), results, 1, arguments);
    } catch (...) {
        own();
        throw;
    }
    own();
    return values;
}

void DeckClient::setKeepOutputs(bool keep) {
    const std::lock_guard lock(mutex_);
    keepsOutputs_ = keep;
}

std::vector<double> DeckClient::output(const std::string& name, std::size_t signal) const {
    const std::lock_guard lock(mutex_);
    const Stage& stage = chain_->find(name);
    return signal < stage.outputs.size() ? stage.outputs[signal] : std::vector<double>{};
}

void DeckClient::setStorage(const DataStorageFilterUtils& storage) {
    const std::lock_guard lock(mutex_);
    info_->getClientSettings().addCustomSetting("dataStorageFilterUtils", storage);
    info_->setFilterImpl("wavedeck_datastorage_filter", std::make_shared<WaveDeckTransformImpl>());
}

void DeckClient::withInfo(const std::function<void(WaveDeckClientInfo&)>& change) {
    const std::lock_guard lock(mutex_);
    change(*info_);
}

double DeckClient::displaySpan() const {
    const std::lock_guard lock(mutex_);
    return displaySpan_;
}

}  // namespace wavedeck::driver
