#include "Exports.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string_view>

#include "BoardRecord.h"
#include "Deck.h"
#include "DeckTraces.h"
#include "EngineeringNumber.h"
#include "MaskFailures.h"
#include "MeasurementReports.h"
#include "SweepLine.h"
#include "TextLists.h"
#include "UsageError.h"
#include "peakFinderStruct.h"
#include "recordingMetadata.h"
#include "spectralMaskStruct.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace program {
namespace {

using Record = dspwavedecks::spectrumEstimatorMetaDataStruct;
using Finding = AnnotationList::Finding;

constexpr std::string_view peaksStage = "frequency_peak_finder_filter";
constexpr std::string_view maskStage = "spectral_mask_tester_filter";

bool isOn(const DeckSettings& settings, std::string_view stage, std::string_view option) {
    return settings.has(stage, option) && settings.value(stage, option) == "true";
}

/// What turns a level of the spectrum into decibels: 0 for one that is in decibels.
double decibelsOf(const DeckSettings& settings) {
    const auto unit = levelUnit(settings);
    return unit.starts_with('W') ? 10.0 : unit.starts_with('V') ? 20.0 : 0.0;
}

double offsetOf(const Record& record) {
    return record.frequencyOffset.empty() ? 0.0 : record.frequencyOffset.front();
}

std::vector<Finding> findPeaks(const dspwavedecks::peakFinderStruct& record, double rbw, const DeckSettings& settings) {
    std::vector<Finding> findings;
    const auto unit = levelUnit(settings);
    for (const auto& peak : record.peaks) {
        findings.push_back({"peak", peak.location, peak.location - rbw / 2.0, peak.location + rbw / 2.0, peak.value,
                            formatQuantity(peak.value, unit) + " at " + formatQuantity(peak.location, "Hz", 12) +
                                ", RBW " + formatQuantity(rbw, "Hz")});
    }
    return findings;
}

}  // namespace

Exports::Exports(const PlayCommand& command, const std::vector<std::unique_ptr<DeckSession>>& decks,
                 const std::vector<std::unique_ptr<SignalReader>>& inputs)
    : existing_(command.overwrite ? Existing::Replaced : Existing::Refused), facts_(inputs.front()->facts()) {
    const auto spectrum =
        std::find_if(decks.begin(), decks.end(), [](const auto& deck) { return deck->showsSpectra(); });
    spectrum_ = spectrum == decks.end() ? nullptr : spectrum->get();
    for (const auto& traces : command.traces) {
        prepareTraces(traces, decks);
    }
    if (!command.annotations.empty()) {
        prepareAnnotations(command, inputs);
    }
    if (!command.sweep.empty()) {
        prepareSweep(command.sweep, inputs);
    }
}

void Exports::prepareTraces(const std::string& text, const std::vector<std::unique_ptr<DeckSession>>& decks) {
    const auto [name, path] = splitTraces(text);
    const auto named =
        std::find_if(decks.begin(), decks.end(), [&wanted = name](const auto& deck) { return deck->name() == wanted; });
    if (named != decks.end()) {
        traces_.push_back({named->get(), path, {}});
    } else if (!name.empty()) {
        std::vector<std::string> names;
        for (const auto& deck : decks) {
            names.emplace_back(deck->name());
        }
        throw UsageError("--traces " + text + ": the deck `" + name + "` is not played, only " + join(names, ", ") +
                         "; a file of this name is ./" + text);
    } else if (spectrum_ != nullptr || decks.size() == 1) {
        traces_.push_back({spectrum_ != nullptr ? spectrum_ : decks.front().get(), path, {}});
    } else {
        throw UsageError("--traces: say of which deck, DECK=FILE");
    }
    if (path.empty()) {
        throw UsageError("--traces " + text + ": names no file");
    }
    checkNewFile(path, existing_);
}

void Exports::prepareSweep(const std::string& path, const std::vector<std::unique_ptr<SignalReader>>& inputs) {
    if (spectrum_ == nullptr) {
        throw UsageError("--sweep: none of the chosen decks is a spectrum");
    }
    if (inputs.size() > 1 || facts_.channels > 1) {
        warnings_.emplace_back("--sweep: a line holds one spectrum, that of signal 0, channel 0");
    }
    sweep_.emplace(path, existing_);
}

void Exports::prepareAnnotations(const PlayCommand& command, const std::vector<std::unique_ptr<SignalReader>>& inputs) {
    if (spectrum_ == nullptr) {
        throw UsageError("--annotations: none of the chosen decks is a spectrum");
    }
    if (inputs.size() > 1 || command.inputOptions.loop) {
        throw UsageError("--annotations: goes with one input that is played once");
    }
    const auto settings = spectrum_->settings();
    if (!isOn(settings, peaksStage, "peakFinderEnabled") && !isOn(settings, maskStage, "spectralMaskEnabled")) {
        throw UsageError("--annotations: neither peaks nor mask is measured");
    }
    annotationsPath_ = command.annotations;
    checkNewFile(annotationsPath_, existing_);
    metadata_ = recordingMetadata(command.inputs.front(), facts_, annotationsPath_);
}

bool Exports::noteUpdate(DeckSession& deck, const Message& message, std::uint64_t samples) {
    for (auto& traces : traces_) {
        if (traces.deck == &deck) {
            traces.message = message;
        }
    }
    if (&deck != spectrum_) {
        return true;
    }
    if (!annotationsPath_.empty()) {
        annotate(samples);
    }
    return !sweep_ || writeSweep(samples);
}

std::optional<UtcTime> Exports::recordedTime(DeckSession& deck) const {
    const double samples = std::round(deck.client().streamTime() * facts_.sampleRate);
    constexpr double most = 9e18;
    return samples >= 0.0 && samples < most
               ? facts_.recorded.behind(static_cast<std::uint64_t>(samples), facts_.sampleRate)
               : std::nullopt;
}

bool Exports::writeSweep(std::uint64_t samples) {
    const auto settings = spectrum_->settings();
    const auto time = recordedTime(*spectrum_)
                          .value_or(std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
    std::string line;
    spectrum_->client().withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto* record = findRecord<Record>(info.getClientSettings(), "spectrumEstimatorMetaData");
        if (record == nullptr || record->numUpdatesProcessed == sweptSpectra_) {
            return;
        }
        sweptSpectra_ = record->numUpdatesProcessed;
        const auto& frequencies = record->frequencyVector;
        const auto newest = newestSpectrum(*record, 0, 0);
        if (newest.size() < 2 || frequencies.size() != newest.size()) {
            return;
        }
        if (!record->linearFrequencyVector) {
            throw UsageError("--sweep: the frequencies of the spectrum have no even step");
        }
        std::vector<double> levels(newest.begin(), newest.end());
        if (const double factor = decibelsOf(settings); factor != 0.0) {
            std::transform(levels.begin(), levels.end(), levels.begin(),
                           [&](double level) { return factor * std::log10(level); });
        }
        const double step = (frequencies.back() - frequencies.front()) / static_cast<double>(frequencies.size() - 1);
        line = sweepLine(time, frequencies.front() + offsetOf(*record), step, samples - sweptSamples_, levels);
    });
    if (line.empty()) {
        return true;
    }
    sweptSamples_ = samples;
    return sweep_->write(line);
}

void Exports::annotate(std::uint64_t samples) {
    const auto settings = spectrum_->settings();
    std::vector<Finding> findings;
    spectrum_->client().withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto& board = info.getClientSettings();
        const auto* spectrum = findRecord<Record>(board, "spectrumEstimatorMetaData");
        if (spectrum == nullptr || spectrum->frequencyVector.empty()) {
            return;
        }
        const auto* peaks = findRecord<dspwavedecks::peakFinderStruct>(board, "peakFinder");
        if (peaks != nullptr && isOn(settings, peaksStage, "peakFinderEnabled")) {
            findings = findPeaks(*peaks, spectrum->transientRBW, settings);
        }
        const auto* mask = findRecord<dspwavedecks::spectralMaskStruct>(board, "spectralMask");
        if (mask == nullptr) {
            return;
        }
        const double failed = (mask->numTotalTests - totalTests_) - (mask->numPassedTests - passedTests_);
        totalTests_ = mask->numTotalTests;
        passedTests_ = mask->numPassedTests;
        if (failed > 0.0) {
            const auto failures = findMaskFailures(*spectrum, *mask, settings);
            findings.insert(findings.end(), failures.begin(), failures.end());
        }
    });
    if (samples > annotatedSamples_) {
        annotations_.add(annotatedSamples_, samples, findings);
        annotatedSamples_ = samples;
    }
}

void Exports::writeTraces(const Traces& traces) const {
    auto table = traces.deck->showsSpectra() ? spectrumTraces(*traces.deck)
                 : traces.message.isNull()   ? TraceTable()
                                             : messageTraces(*traces.deck, *traces.message, facts_.sampleRate);
    table.remarks.insert(table.remarks.begin(), "input: " + facts_.name);
    if (const auto time = recordedTime(*traces.deck); time && traces.deck->showsSpectra()) {
        table.remarks.push_back("time: " + formatDateTime(*time));
    }
    if (traces.path == "-") {
        LineFile(traces.path, existing_).write(table.csv());
    } else {
        writeWholeFile(traces.path, table.csv(), existing_);
    }
}

void Exports::finish() {
    for (const auto& traces : traces_) {
        writeTraces(traces);
    }
    if (annotationsPath_.empty()) {
        return;
    }
    annotations_.writeTo(metadata_, facts_.firstIndex);
    const auto text = metadata_.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
    writeWholeFile(annotationsPath_, text, existing_);
    if (annotations_.leftOut() > 0) {
        warnings_.push_back(annotationsPath_ + ": " + std::to_string(annotations_.leftOut()) +
                            " findings are left out, since there are too many");
    }
}

}  // namespace program
