#include "PlaySession.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>

#include "CoefficientReader.h"
#include "EngineeringNumber.h"
#include "Measures.h"
#include "PlanImprovement.h"
#include "ProgressLine.h"
#include "StageLibraryPath.h"
#include "StopRequest.h"
#include "UsageError.h"
#include "checkOutputs.h"

namespace program {
namespace {

/// Sample times of a signal in the frames before frame k, in step with those of the first signal.
std::uint64_t samplesBefore(std::uint64_t k, std::size_t frameSize, double rate, double firstRate) {
    return static_cast<std::uint64_t>(
        std::floor(static_cast<double>(k) * static_cast<double>(frameSize) * (rate / firstRate)));
}

/// Times real time; nothing for as fast as it goes.
std::optional<double> readSpeed(const PlayCommand& command) {
    if (command.speed.empty()) {
        return command.realtime || !command.serve.empty() ? std::optional(1.0) : std::nullopt;
    }
    if (command.realtime) {
        throw UsageError("--speed: --realtime says the speed already");
    }
    return command.speed == "max" ? std::nullopt : std::optional(readPositiveNumber("--speed", command.speed));
}

}  // namespace

PlaySession::PlaySession(const PlayCommand& command) : speed_(readSpeed(command)) {
    constexpr long long largestFrame = 1LL << 26;
    const auto frame = readWholeNumber("--frame", command.frame, 1);
    if (frame > largestFrame) {
        throw UsageError("--frame: " + command.frame + " is more than " + std::to_string(largestFrame));
    }
    frameSize_ = static_cast<std::size_t>(frame);
    if (command.report != "text" && command.report != "json") {
        throw UsageError("--report: `" + command.report + "` is neither text nor json");
    }
    checkOutputs(command);
    openInputs(command);
    makeDecks(command);
    if (!command.messages.empty()) {
        messages_.emplace(command.messages);
    }
    if (!command.traces.empty() || !command.sweep.empty() || !command.annotations.empty()) {
        exports_.emplace(command, decks_, inputs_);
    }
    if (!command.serve.empty()) {
        live_.emplace(command.serve, decks_);
        std::fprintf(stderr, "serving the display at %s\n", live_->address().c_str());
    }
}

void PlaySession::openInputs(const PlayCommand& command) {
    if (std::find(command.decks.begin(), command.decks.end(), "response") != command.decks.end()) {
        openCoefficients(command);
    } else {
        refuseIdleOptions(command.inputs, command.inputOptions);
        for (const auto& input : command.inputs) {
            inputs_.push_back(openInput(input, command.inputOptions));
        }
    }
    for (const auto& input : inputs_) {
        centerFrequencies_.push_back(input->facts().centerFrequency);
        if (input->facts().changesCenter && (inputs_.size() > 1 || command.blockflow)) {
            throw UsageError(input->facts().name +
                             ": its captures have several centre frequencies; such a recording "
                             "is played alone and without --blockflow");
        }
    }
    summaries_.resize(inputs_.size());
    frame_.resize(inputs_.size());
}

void PlaySession::openCoefficients(const PlayCommand& command) {
    if (command.decks.size() > 1 || command.inputs.size() > 1) {
        throw UsageError("--deck response: takes one file of coefficients and no other deck beside it");
    }
    refuseInputOptions(command.inputOptions, "of no use to --deck response, which takes coefficients");
    constexpr double usualRate = 44100.0;
    const auto& rate = command.inputOptions.rate;
    inputs_.push_back(std::make_unique<CoefficientReader>(
        command.inputs.front(), rate.empty() ? usualRate : readPositiveNumber("--rate", rate)));
    frameSize_ = static_cast<std::size_t>(*inputs_.front()->facts().length);
}

SessionFacts PlaySession::sessionFacts(const PlayCommand& command) const {
    SessionFacts session;
    session.updatesPerSecond = readPositiveNumber("--updates", command.updates);
    if (!command.spanTime.empty()) {
        session.displaySpan = readPositiveNumber("--span-time", command.spanTime);
    }
    if (!command.inputOptions.scale.empty()) {
        session.fullScale = readPositiveNumber("--scale", command.inputOptions.scale);
    }
    session.centerFrequencies = centerFrequencies_;
    const double firstRate = inputs_.front()->facts().sampleRate;
    session.startTime = static_cast<double>(inputs_.front()->facts().firstSample) / firstRate;
    for (const auto& input : inputs_) {
        const auto& facts = input->facts();
        wavedeck::driver::SignalFacts signal;
        signal.id = facts.name;
        signal.numChannels = facts.rows();
        signal.isComplex = facts.isComplex;
        signal.sampleTime = 1.0 / facts.sampleRate;
        signal.frameSize =
            static_cast<int>(std::ceil(static_cast<double>(frameSize_) * std::max(facts.sampleRate / firstRate, 1e-9)));
        const double frameSize = static_cast<double>(frameSize_) * (facts.sampleRate / firstRate);
        if (command.blockflow && frameSize != std::floor(frameSize)) {
            throw UsageError("--blockflow: a frame of " + std::to_string(frameSize_) + " samples of " +
                             inputs_.front()->facts().name + " holds no whole number of samples of " + facts.name);
        }
        session.signals.push_back(std::move(signal));
    }
    return session;
}

void PlaySession::makeDecks(const PlayCommand& command) {
    const auto session = sessionFacts(command);
    const wavedeck::driver::StageLibrary library(stageLibraryPath());
    std::vector<const Deck*> decks;
    for (const auto& name : command.decks.empty() ? defaultDecks() : command.decks) {
        const auto* deck = &findDeck(name, command.blockflow);
        if (std::find(decks.begin(), decks.end(), deck) != decks.end()) {
            throw UsageError("--deck: `" + name + "` is given twice");
        }
        decks.push_back(deck);
    }
    auto settings = settingsOf(decks, command);
    for (std::size_t i = 0; i < decks.size(); ++i) {
        SessionFacts facts = session;
        markInputPorts(settings[i], facts);
        applyPresets(*decks[i], facts, settings[i]);
        warnOfLongSpan(*decks[i], session, settings[i]);
        decks_.push_back(std::make_unique<DeckSession>(*decks[i], std::move(settings[i]), facts, library));
    }
}

void PlaySession::warnOfLongSpan(const Deck& deck, const SessionFacts& session, const DeckSettings& settings) {
    if (deck.kind != wavedeck::driver::ChainKind::Time) {
        return;
    }
    const auto& signal = session.signals.front();
    const double span = session.displaySpan.value_or(0.0);
    if (const double shown = numDisplayedSamples * signal.sampleTime; span > shown) {
        warnings_.push_back("--span-time: the display shows the newest 2^24 samples, " + formatQuantity(shown, "s"));
    }
    const auto measures = measuresOn(settings);
    const double measured = numCachedSamples * signal.sampleTime;
    if (span > measured &&
        std::any_of(measures.begin(), measures.end(), [](const auto* each) { return each->name != "trigger"; })) {
        warnings_.push_back("--span-time: statistics, peaks and pulses are measured over the newest 5000 samples, " +
                            formatQuantity(measured, "s"));
    }
}

std::vector<DeckSettings> PlaySession::settingsOf(const std::vector<const Deck*>& decks, const PlayCommand& command) {
    std::vector<DeckSettings> settings;
    for (const auto* deck : decks) {
        settings.emplace_back(std::vector<std::string_view>(deck->stages.begin(), deck->stages.end()));
    }
    if (command.measure) {
        switchMeasuresOn(*command.measure, settings);
    } else {
        switchUsualMeasuresOn(settings);
    }
    for (const auto& setting : command.settings) {
        if (const auto warning = applySetting(setting, settings); !warning.empty()) {
            warnings_.push_back(warning);
        }
    }
    return settings;
}

void PlaySession::play() {
    keepFault([&] { playInputs(); });
    if (exports_) {
        keepFault([&] { exports_->finish(); });
    }
}

void PlaySession::keepFault(const std::function<void()>& call) {
    try {
        call();
    } catch (const UsageError& error) {
        fault_ = fault_.empty() ? error.what() : fault_;
    }
}

void PlaySession::playInputs() {
    // However late it is, the display gets its turn: the pacer only looks at the clock when a step is shown.
    constexpr int mostFedInARow = 64;
    int fedInARow = 0;
    ProgressLine progress;
    const auto begin = Clock::now();
    const auto whole = duration();
    PlanImprovement plans(speed_ || !whole);
    while (!readerGone_ && !StopRequest::requested()) {
        if (hasToShow() && (!isFrameDue(begin) || fedInARow >= mostFedInARow)) {
            show();
            fedInARow = 0;
        } else if (!readFrameIfGood() || (speed_ && !StopRequest::sleepUntil(dueTime(played(), begin)))) {
            break;
        } else {
            feed();
            fedInARow = std::min(fedInARow + 1, mostFedInARow);
        }
        plans.step();
        progress.show(played(), whole);
    }
    for (const auto& deck : decks_) {
        deck->endInput();
    }
    while (hasToShow()) {
        show();
    }
    // What came since the last update that was due goes out too.
    for (const auto& deck : decks_) {
        send(*deck);
    }
    if (live_) {
        serveOn();
    }
}

bool PlaySession::hasToShow() const {
    return std::any_of(decks_.begin(), decks_.end(), [](const auto& deck) { return deck->hasWaiting(); });
}

bool PlaySession::isFrameDue(Clock::time_point begin) const {
    // Without a clock to keep up with, a simulation waits for its display.
    const bool anyHeld = std::any_of(decks_.begin(), decks_.end(), [](const auto& deck) { return deck->isHeld(); });
    const double frame = static_cast<double>(frameSize_) / inputs_.front()->facts().sampleRate;
    return speed_ && !anyHeld && Clock::now() >= dueTime(played() + frame, begin);
}

void PlaySession::show() {
    for (const auto& deck : decks_) {
        if (deck->show()) {
            sendIfDue(*deck);
        }
    }
}

void PlaySession::serveOn() {
    if (StopRequest::requested()) {
        return;
    }
    live_->endInput();
    std::fprintf(stderr, "%s; the display stays until Ctrl-C\n",
                 fault_.empty() ? "the input has ended" : fault_.c_str());
    constexpr auto lookAgain = std::chrono::milliseconds(50);
    while (StopRequest::sleepUntil(std::chrono::steady_clock::now() + lookAgain)) {
        for (auto* deck : live_->takeTuned()) {
            deck->replay();
            send(*deck);
        }
    }
}

bool PlaySession::readFrameIfGood() {
    bool any = false;
    keepFault([&] { any = readFrame(); });
    return any;
}

bool PlaySession::readFrame() {
    const double firstRate = inputs_.front()->facts().sampleRate;
    bool any = false;
    std::uint64_t samplesOfFirst = 0;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        const double rate = inputs_[i]->facts().sampleRate;
        const auto wanted = samplesBefore(frames_ + 1, frameSize_, rate, firstRate) -
                            samplesBefore(frames_, frameSize_, rate, firstRate);
        const auto samples = inputs_[i]->read(wanted, frame_[i]);
        summaries_[i].add(frame_[i], samples);
        samplesOfFirst += i == 0 ? samples : 0;
        any = any || samples > 0;
    }
    ++frames_;
    followCenterFrequencies();
    samples_ += samplesOfFirst;
    return any;
}

void PlaySession::followCenterFrequencies() {
    bool changed = false;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        const double now = inputs_[i]->facts().centerFrequency;
        changed = changed || now != centerFrequencies_[i];
        centerFrequencies_[i] = now;
    }
    for (std::size_t i = 0; changed && i < decks_.size(); ++i) {
        // What was measured at the old frequencies goes out with them.
        send(*decks_[i]);
        decks_[i]->setCenterFrequencies(centerFrequencies_);
    }
}

void PlaySession::feed() {
    for (const auto& deck : decks_) {
        deck->feed(frame_);
        sendIfDue(*deck);
    }
}

void PlaySession::sendIfDue(DeckSession& deck) {
    if (deck.client().updateDue()) {
        send(deck);
    }
}

void PlaySession::send(DeckSession& deck) {
    const auto begin = Clock::now();
    const auto update = deck.client().update();
    if (update.message.isNull()) {
        return;
    }
    deck.noteUpdate(*update.message);
    if (exports_ && !exports_->noteUpdate(deck, update.message, samples_)) {
        readerGone_ = true;
    }
    if (!messages_ && !live_) {
        return;
    }
    const auto built = Clock::now();
    const std::string& text = messageText_.write(*update.message);
    const auto written = Clock::now();
    if (messages_ && !readerGone_) {
        readerGone_ = !messages_->write(deck.name(), update.event, text);
    }
    if (live_) {
        const auto milliseconds = [](auto from, auto to) {
            return std::chrono::duration<double, std::milli>(to - from).count();
        };
        live_->publish(deck, update.event, text, {milliseconds(begin, built), milliseconds(built, written)});
    }
}

PlaySession::Clock::time_point PlaySession::dueTime(double seconds, Clock::time_point begin) const {
    // Slow speeds reach farther than the clock counts.
    constexpr double farthest = 1e9;
    return begin + std::chrono::duration_cast<Clock::duration>(
                       std::chrono::duration<double>(std::min(seconds / *speed_, farthest)));
}

double PlaySession::played() const {
    double longest = 0.0;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        longest = std::max(longest, static_cast<double>(summaries_[i].samples()) / inputs_[i]->facts().sampleRate);
    }
    return longest;
}

std::optional<double> PlaySession::duration() const {
    double longest = 0.0;
    for (const auto& input : inputs_) {
        if (!input->facts().length) {
            return std::nullopt;
        }
        longest = std::max(longest, static_cast<double>(*input->facts().length) / input->facts().sampleRate);
    }
    return longest;
}

bool PlaySession::limitFailed() {
    return std::any_of(decks_.begin(), decks_.end(), [](const auto& deck) { return deck->limitFailed(); });
}

Report PlaySession::report() {
    Report report;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        report.inputs.push_back(summaries_[i].report(inputs_[i]->facts()));
        const auto& notes = inputs_[i]->notes();
        report.warnings.insert(report.warnings.end(), notes.begin(), notes.end());
        if (summaries_[i].samples() == 0 && notes.empty() && fault_.empty()) {
            report.warnings.push_back(inputs_[i]->facts().name + ": holds no samples");
        }
    }
    report.warnings.insert(report.warnings.end(), warnings_.begin(), warnings_.end());
    if (exports_) {
        report.warnings.insert(report.warnings.end(), exports_->warnings().begin(), exports_->warnings().end());
    }
    for (const auto& deck : decks_) {
        report.decks.push_back(deck->report());
    }
    report.ended = !fault_.empty()            ? fault_
                   : readerGone_              ? "nobody reads the messages any more"
                   : StopRequest::requested() ? "interrupted"
                                              : "end of input";
    return report;
}

}  // namespace program
