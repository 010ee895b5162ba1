// Sections of the report on measurements of spectra.
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "BoardRecord.h"
#include "DeckPresets.h"
#include "EngineeringNumber.h"
#include "MeasurementReports.h"
#include "TextLists.h"
#include "channelMeasurementsStruct.h"
#include "distortionStruct.h"
#include "peakFinderStruct.h"
#include "phaseNoiseStruct.h"
#include "spectralMaskStruct.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace program {

std::span<const double> newestSpectrum(const dspwavedecks::spectrumEstimatorMetaDataStruct& record, std::size_t signal,
                                       std::size_t channel) {
    const std::size_t block = record.spectrumLength * record.numSpectrumBlocks;
    if (block == 0 || signal >= record.spectrumData.size() ||
        (channel + 1) * block > record.spectrumData[signal].size()) {
        return {};
    }
    return std::span(record.spectrumData[signal])
        .subspan((channel + 1) * block - record.spectrumLength, record.spectrumLength);
}

namespace {

/// The unit of a word of the option "spectrumUnits": "dbm" is "dBm".
std::string spectrumUnit(std::string_view word) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> units{{
        {"watts", "W"},
        {"dbw", "dBW"},
        {"dbm", "dBm"},
        {"dbfs", "dBFS"},
        {"vrms", "Vrms"},
        {"dbv", "dBV"},
        {"dbuv", "dBuV"},
    }};
    const auto* found =
        std::find_if(units.begin(), units.end(), [&](const auto& entry) { return entry.first == word; });
    return found == units.end() ? "" : std::string(found->second);
}

}  // namespace

std::string levelUnit(const DeckSettings& settings) {
    const auto word = shownSpectrumUnits(settings);
    const auto unit = spectrumUnit(std::string_view(word).substr(0, word.find('/')));
    if (settings.value(estimatorStage(settings), "spectrumType") != "power-density") {
        return unit;
    }
    return unit + (unit == "Vrms" ? "/sqrt(Hz)" : "/Hz");
}

namespace {

/// The unit of a power that was integrated over a spectrum: decibels over the spectrum's power unit.
std::string powerUnit(const DeckSettings& settings) {
    auto unit = levelUnit(settings);
    unit.resize(std::min(unit.size(), unit.find('/')));
    return unit == "W" ? "dBW" : unit == "Vrms" ? "dB" : unit;
}

/// Noise floor of each channel: the median of the newest spectrum's bins, which tones hardly move.
void addNoiseFloors(const dspwavedecks::spectrumEstimatorMetaDataStruct& record, const DeckSettings& settings,
                    ReportSection& section) {
    ReportTable table{"noiseFloors", {{"signal", "signal"}, {"channel", "channel"}}, {}};
    const auto type = settings.value(estimatorStage(settings), "spectrumType");
    table.columns.push_back({"level", "noise floor (median)", levelUnit(settings),
                             "median of the newest spectrum's bins: " +
                                 std::string(type == "power-density" ? "power density, in a bandwidth of 1 Hz"
                                             : type == "rms"         ? "rms amplitude in an RBW"
                                                                     : "power in an RBW")});
    const std::size_t block = record.spectrumLength * record.numSpectrumBlocks;
    for (std::size_t signal = 0; signal < record.spectrumData.size() && block > 0; ++signal) {
        const auto& rows = record.spectrumData[signal];
        for (std::size_t row = 0; (row + 1) * block <= rows.size(); ++row) {
            const auto newest = newestSpectrum(record, signal, row);
            std::vector<double> bins(newest.begin(), newest.end());
            std::erase_if(bins, [](double bin) { return std::isnan(bin); });
            if (bins.empty()) {
                continue;
            }
            const auto middle = bins.begin() + static_cast<std::ptrdiff_t>(bins.size() / 2);
            std::nth_element(bins.begin(), middle, bins.end());
            table.rows.push_back({static_cast<double>(signal), static_cast<double>(row), *middle});
        }
    }
    section.tables.push_back(std::move(table));
}

/// The resolution bandwidth that the options ask for, or what they ask for in its place.
std::string requestedRBW(const DeckSettings& settings, std::string_view estimator) {
    if (settings.has(estimator, "inputPortRBW") && settings.value(estimator, "inputPortRBW") == "true") {
        return "by the input port";
    }
    if (const auto method = settings.value(estimator, "frequencyResolutionMethod"); method != "rbw") {
        return "by " + method;
    }
    return settings.value(estimator, "autoRBW") == "true"
               ? "automatic"
               : formatQuantity(*parseNumber(settings.value(estimator, "rbw")), "Hz");
}

}  // namespace

void addSpectrumFigures(const WaveDeckClientSettings& board, const DeckSettings& settings, ReportSection& section) {
    const auto* record = findRecord<dspwavedecks::spectrumEstimatorMetaDataStruct>(board, "spectrumEstimatorMetaData");
    if (record == nullptr || record->frequencyVector.empty()) {
        return;
    }
    const auto estimator = estimatorStage(settings);
    const std::string noneYet = record->numUpdatesProcessed == 0 ? "(the input ended before the first)" : "";
    section.add({"updatesProcessed", "spectra", record->numUpdatesProcessed, "", noneYet});
    const double offset = record->frequencyOffset.empty() ? 0.0 : record->frequencyOffset.front();
    section.add({"start", "from", record->frequencyVector.front() + offset, "Hz"});
    section.add({"stop", "to", record->frequencyVector.back() + offset, "Hz"});
    section.add({"span", "span", record->frequencyVector.back() - record->frequencyVector.front(), "Hz"});
    section.add({"type", "type", settings.value(estimator, "spectrumType")});
    section.add({"units", "unit", levelUnit(settings)});
    section.add({"referenceLoad", "reference load", *parseNumber(settings.value(estimator, "referenceLoad")), "ohm"});
    section.add({"requestedRBW", "RBW asked for", requestedRBW(settings, estimator)});
    section.add({"rbw", "RBW", record->transientRBW, "Hz"}).add({"enbw", "ENBW", record->enbw, "bins"});
    const bool welch = settings.value(estimator, "method") == "welch";
    section.add({"method", "method", settings.value(estimator, "method")});
    section.add({"window", "window", welch ? settings.value(estimator, "window") : std::string("polyphase filter")});
    section.add({"segmentLength", "segment", record->segmentLength, "", "samples"});
    section.add({"fftLength", "FFT length", record->fftLength});
    section.add({"averages", "averages", record->numSpectralAverages});
    section.add({"vbw", "VBW", record->vbw, "Hz"});
    section.add({"wholeSegments", "whole segments", record->desiredSegmentLengthMet});
    addNoiseFloors(*record, settings, section);
}

ReportSection reportPeaks(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage) {
    ReportSection section{"peaks", "peaks"};
    const auto* record = findRecord<dspwavedecks::peakFinderStruct>(board, "peakFinder");
    if (record == nullptr) {
        return section;
    }
    section.add(measuredChannel(settings, stage));
    section.add({"count", "found", static_cast<std::uint64_t>(record->peaks.size())});
    ReportTable table{"peaks", {}, {}};
    if (stage == "frequency_peak_finder_filter") {
        table.columns = {{"frequency", "frequency", "Hz"}, {"level", "level", levelUnit(settings)}};
    } else if (stage.ends_with("time_peak_finder_filter")) {
        table.columns = {{"time", "time", "s"}, {"value", "value"}};
    } else {
        table.columns = {{"sample", "sample"}, {"value", "value"}};  // the response deck turns samples into frequencies
    }
    for (const auto& peak : record->peaks) {
        table.rows.push_back({peak.location, peak.value});
    }
    section.tables.push_back(std::move(table));
    return section;
}

ReportSection reportChannel(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage) {
    ReportSection section{"channel", "channel measurement"};
    const auto* record = findRecord<dspwavedecks::channelMeasurementsStruct>(board, "channel");
    if (record == nullptr || !record->isNewDataReady) {
        return section;
    }
    section.add(measuredChannel(settings, stage));
    const auto number = [&](std::string_view option) { return *parseNumber(settings.value(stage, option)); };
    section.add({"type", "type", settings.value(stage, "channelMeasurementsType")});
    section.add({"channelStart", "channel from", number("measurementChannelStartFrequency"), "Hz"});
    section.add({"channelStop", "channel to", number("measurementChannelStopFrequency"), "Hz"});
    section.add({"channelPower", "channel power", record->channelPower, powerUnit(settings)});
    if (record->type == dspwavedecks::ChannelMeasurementEnum::Type::occupiedBandwidth) {
        section.add({"occupiedBandwidth", "occupied bandwidth", record->occupiedBW, "Hz"});
        section.add({"startFrequency", "occupied from", record->startFrequency, "Hz"});
        section.add({"stopFrequency", "occupied to", record->stopFrequency, "Hz"});
        section.add({"frequencyError", "frequency error", record->frequencyError, "Hz"});
        return section;
    }
    section.add({"adjacentBandwidth", "adjacent bandwidth", number("adjacentBW"), "Hz"});
    const auto offsets = split(settings.value(stage, "acprOffsets"), ',');
    ReportTable table{
        "adjacentChannels", {{"offset", "offset", "Hz"}, {"lower", "lower", "dB"}, {"upper", "upper", "dB"}}, {}};
    for (std::size_t i = 0; i < std::min(record->acprLower.size(), record->acprUpper.size()); ++i) {
        const auto offset = i < offsets.size() ? parseNumber(offsets[i]) : std::nullopt;
        table.rows.push_back({offset.value_or(std::nan("")), record->acprLower[i], record->acprUpper[i]});
    }
    section.tables.push_back(std::move(table));
    return section;
}

ReportSection reportDistortion(const WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage) {
    ReportSection section{"distortion", "distortion"};
    const auto* record = findRecord<dspwavedecks::distortionStruct>(board, "distortion");
    if (record == nullptr || !record->isNewDataReady) {
        return section;
    }
    section.add(measuredChannel(settings, stage));
    section.add({"type", "type", settings.value(stage, "distortionType")});
    if (record->type == dspwavedecks::DistortionMeasurementEnum::Type::harmonic) {
        section.add({"thd", "THD", record->thd, "dB"}).add({"thdPercent", "THD", record->thdPercent, "%"});
        section.add({"snr", "SNR", record->snr, "dB"}).add({"sinad", "SINAD", record->sinad, "dB"});
        section.add({"sfdr", "SFDR", record->sfdr, "dB"});
    } else {
        section.add({"toi", "third-order intercept", record->toi, levelUnit(settings)});
    }
    ReportTable table{"tones", {{"frequency", "frequency", "Hz"}, {"level", "level", levelUnit(settings)}}, {}};
    const auto tones =
        std::min<std::size_t>({record->numHarmonics, record->harmonicFrequency.size(), record->harmonicPower.size()});
    for (std::size_t i = 0; i < tones; ++i) {
        table.rows.push_back({record->harmonicFrequency[i], record->harmonicPower[i]});
    }
    section.tables.push_back(std::move(table));
    return section;
}

ReportSection reportPhaseNoise(const WaveDeckClientSettings& board, const DeckSettings&, std::string_view) {
    ReportSection section{"phaseNoise", "phase noise"};
    const auto* record = findRecord<dspwavedecks::phaseNoiseStruct>(board, "phaseNoise");
    if (record == nullptr || !record->isNewDataReady) {
        return section;
    }
    ReportTable table{
        "spots",
        {{"signal", "signal"}, {"channel", "channel"}, {"offset", "offset", "Hz"}, {"level", "level", "dBc/Hz"}},
        {}};
    for (std::size_t signal = 0; signal < record->spotPhaseNoise.size(); ++signal) {
        for (std::size_t channel = 0; channel < record->spotPhaseNoise[signal].size(); ++channel) {
            const auto& levels = record->spotPhaseNoise[signal][channel];
            for (std::size_t i = 0; i < std::min(levels.size(), record->spotFrequencyOffset.size()); ++i) {
                table.rows.push_back({static_cast<double>(signal), static_cast<double>(channel),
                                      record->spotFrequencyOffset[i], levels[i]});
            }
        }
    }
    section.tables.push_back(std::move(table));
    return section;
}

ReportSection reportMask(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage) {
    ReportSection section{"mask", "mask test"};
    const auto* record = findRecord<dspwavedecks::spectralMaskStruct>(board, "spectralMask");
    if (record == nullptr || record->numTotalTests == 0.0) {
        return section;
    }
    section.add({"masks", "masks", settings.value(stage, "enabledMasks")});
    section.add({"passing", "last spectrum passes", record->isCurrentlyPassing});
    section.add({"passed", "passed tests", record->numPassedTests});
    section.add({"tests", "tests", record->numTotalTests}).add({"successRate", "success", record->successRate, "%"});
    section.add({"reference", "reference level", record->spectrumPeak, levelUnit(settings)});
    if (!record->isCurrentlyPassing) {
        // The record's own text names both masks whichever fails.
        section.add({"failingMasks", "failing masks",
                     std::string(record->lowerMaskStatus   ? "upper"
                                 : record->upperMaskStatus ? "lower"
                                                           : "upper, lower")});
        std::vector<std::string> channels;
        for (const auto channel : record->failingChannels) {
            channels.push_back(std::to_string(channel));
        }
        section.add({"failingChannels", "failing channels", join(channels, ", ")});
    }
    return section;
}

}  // namespace program
