#include "DeckSession.h"

#include <algorithm>
#include <cmath>

#include "BoardRecord.h"
#include "MeasurementReports.h"
#include "Measures.h"
#include "ResponseReport.h"
#include "measuredPart.h"
#include "spectralMaskStruct.h"

namespace program {
namespace {

using wavedeck::driver::ChainKind;

const std::string responseStage = "magnitude_phase_response_filter";

/// The response deck shows every filter as if it ran at this rate, Hz.
constexpr double responseRate = 44100.0;

wavedeck::driver::ClientFacts clientFacts(const Deck& deck, const SessionFacts& facts) {
    wavedeck::driver::ClientFacts client;
    client.name = deck.name;
    client.kind = deck.kind;
    client.signals = facts.signals;
    client.displaySpan = facts.displaySpan;
    client.updatesPerSecond = facts.updatesPerSecond;
    client.startTime = facts.startTime;
    return client;
}

std::uint64_t readCounter(const wavedeck::WaveDeckClientSettings& board, const char* key) {
    const auto* count = findRecord<unsigned long>(board, key);
    return count == nullptr ? 0 : *count;
}

}  // namespace

DeckSession::DeckSession(const Deck& deck, DeckSettings settings, const SessionFacts& facts,
                         const wavedeck::driver::StageLibrary& library)
    : deck_(deck),
      facts_(facts),
      settings_(std::move(settings)),
      client_(clientFacts(deck, facts)),
      rate_(1.0 / facts.signals.front().sampleTime) {
    client_.setKeepOutputs(deck.kind == ChainKind::Response);
    for (const auto stage : settings_.stages()) {
        const std::string stageName(stage);
        client_.addStage(stageName, library.makeFilter(stageName), settings_.properties(stage));
    }
    const std::string strategy(deck.strategy);
    client_.setStrategy(strategy, library.makeStrategy(strategy));
    client_.setup();
    if (isBlockflow(deck.kind)) {
        simulation_.emplace(client_);
    }
}

bool DeckSession::showsSpectra() const {
    return deck_.kind == ChainKind::Spectrum || deck_.kind == ChainKind::BlockflowSpectrum;
}

void DeckSession::feed(const std::vector<std::vector<double>>& frame) {
    if (!simulation_) {
        spans_.assign(frame.begin(), frame.end());
        client_.frame(spans_);
    } else if (isWhole(frame)) {
        simulation_->push(frame);
    }
}

bool DeckSession::isWhole(const std::vector<std::vector<double>>& frame) const {
    for (std::size_t i = 0; i < frame.size(); ++i) {
        const auto& signal = facts_.signals[i];
        if (frame[i].size() !=
            static_cast<std::size_t>(signal.frameSize) * static_cast<std::size_t>(signal.numChannels)) {
            return false;
        }
    }
    return true;
}

std::uint64_t DeckSession::samplesPerStep() const {
    int samples = 0;
    for (const auto& signal : facts_.signals) {
        samples += signal.isInputPort ? 0 : signal.frameSize * signal.numChannels / (signal.isComplex ? 2 : 1);
    }
    return static_cast<std::uint64_t>(samples);
}

bool DeckSession::show() {
    if (!simulation_ || !simulation_->hasWaiting()) {
        return false;
    }
    simulation_->show();
    return true;
}

void DeckSession::endInput() {
    if (simulation_) {
        simulation_->end();
    }
}

void DeckSession::noteUpdate(const Poco::JSON::Object& message) {
    ++updates_;
    trigger_.add(message);
}

ReportSection DeckSession::report() {
    const std::lock_guard lock(mutex_);
    ReportSection section{"", "deck " + std::string(deck_.name)};
    section.add({"deck", "", std::string(deck_.name)});
    std::uint64_t framesSeen = 0;
    client_.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto& board = info.getClientSettings();
        // A simulation's own counters count a frame once a channel, and the parts of complex samples.
        framesSeen = simulation_ ? simulation_->stepsShown() : readCounter(board, "framesProcessed");
        section.add({"frames", "frames", framesSeen});
        section.add({"samples", "samples of all channels",
                     simulation_ ? framesSeen * samplesPerStep() : readCounter(board, "samplesProcessed")});
        section.add({"updates", "updates", updates_});
        if (simulation_) {
            section.add({"held", "times held by the pacer", simulation_->timesHeld()});
        }
        if (showsSpectra()) {
            addSpectrumFigures(board, settings_, section);
        }
    });
    if (deck_.kind == ChainKind::Time || deck_.kind == ChainKind::BlockflowTime) {
        section.add({"span", "display span", client_.displaySpan(), "s"});
    }
    auto measures = framesSeen > 0 || updates_ > 0 ? reportMeasures() : ReportSection();
    if (deck_.kind == ChainKind::Response) {
        addResponse(section, measures);
    }
    section.sections.insert(section.sections.end(), measures.sections.begin(), measures.sections.end());
    return section;
}

ReportSection DeckSession::reportMeasures() {
    ReportSection all;
    client_.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        for (const auto* measure : measuresOn(settings_)) {
            all.sections.push_back(measure->report(info.getClientSettings(), settings_, measure->stage));
            auto& section = all.sections.back();
            if (!section.values.empty() &&
                (section.values[0].key == "measured" || section.values[0].key == "watched")) {
                std::get<std::string>(section.values[0].value) += measuredPart(facts_, settings_, measure->stage);
            }
            if (measure->stage.ends_with("trigger_filter")) {
                trigger_.report(section);
            }
        }
    });
    return all;
}

void DeckSession::addResponse(ReportSection& section, ReportSection& measures) {
    // Frequencies, magnitudes and phases of one channel.
    auto response = client_.output(responseStage, 0);
    const std::size_t points = response.size() / 3;
    const std::span frequencies(response.data(), points);
    const std::span magnitudes(response.data() + points, points);
    for (double& frequency : frequencies) {
        frequency *= rate_ / responseRate;
    }
    const auto display = settings_.value(responseStage, "magnitudeDisplay");
    if (display != "Magnitude (dB)") {
        const double factor = display == "Magnitude squared" ? 10.0 : 20.0;
        std::transform(magnitudes.begin(), magnitudes.end(), magnitudes.begin(),
                       [&](double magnitude) { return factor * std::log10(magnitude); });
    }
    section.sections.push_back(reportResponse(frequencies, magnitudes));
    for (auto& measure : measures.sections) {
        for (auto& peaks : measure.tables) {
            showPeaksByFrequency(frequencies, peaks);
        }
    }
}

bool DeckSession::limitFailed() {
    bool failed = false;
    client_.withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto* mask = findRecord<dspwavedecks::spectralMaskStruct>(info.getClientSettings(), "spectralMask");
        failed = mask != nullptr && mask->numPassedTests < mask->numTotalTests;
    });
    return failed;
}

}  // namespace program
