#include "DeckPresets.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "EngineeringNumber.h"
#include "TextLists.h"
#include "UsageError.h"
#include "impliedOptions.h"

namespace program {
namespace {

constexpr std::string_view peaks = "frequency_peak_finder_filter";
constexpr std::string_view channel = "channel_measurements_filter";
constexpr std::string_view phaseNoise = "phase_noise_filter";
constexpr std::string_view mask = "spectral_mask_tester_filter";

constexpr std::array measurementStages{peaks, channel, std::string_view("distortion_measurements_filter"), phaseNoise,
                                       mask};

constexpr std::array timeMeasurementStages{
    std::string_view("time_signal_statistics_filter"), std::string_view("time_peak_finder_filter"),
    std::string_view("bilevel_measurements_filter"), std::string_view("trigger_filter")};

/// Options of the measurement stages that follow the estimator's settings.
constexpr std::array<std::string_view, 3> linkedOptions{"spectrumType", "spectrumUnits", "frequencyOffset"};

std::string asText(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", value);
    return text.data();
}

std::string asText(const std::vector<double>& values) {
    std::vector<std::string> texts;
    for (const double value : values) {
        texts.push_back(asText(value));
    }
    return join(texts, ",");
}

/// Channels of the first signals, a complex one counted once.
std::size_t channelsOf(const SessionFacts& facts, std::size_t numSignals) {
    std::size_t channels = 0;
    for (std::size_t i = 0; i < std::min(numSignals, facts.signals.size()); ++i) {
        const auto& signal = facts.signals[i];
        channels += static_cast<std::size_t>(signal.isComplex ? signal.numChannels / 2 : signal.numChannels);
    }
    return channels;
}

constexpr std::string_view ports = "bf_input_port_parameters_handler_filter";
constexpr std::array portOptions{"inputPortFrequencyVector", "inputPortRBW", "inputPortVBW"};

bool usesPort(const DeckSettings& settings, std::string_view option) {
    return settings.has(ports, option) && settings.value(ports, option) == "true";
}

/// What comes from a port is not automatic.
void linkPorts(DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    for (const std::string_view option : portOptions) {
        if (settings.has(ports, option)) {
            settings.preset(estimator, option, settings.value(ports, option));
        }
    }
    if (usesPort(settings, "inputPortFrequencyVector")) {
        settings.preset(estimator, "autoFrequencyVector", "false");
    }
    if (usesPort(settings, "inputPortRBW")) {
        settings.preset(estimator, "autoRBW", "false");
    }
    if (usesPort(settings, "inputPortVBW")) {
        settings.preset(estimator, "averagingMethod", "vbw");
        settings.preset(estimator, "autoVBW", "false");
    }
}

/// The centre frequency of each signal, once for each of its channels.
std::vector<double> frequencyOffsets(const SessionFacts& facts) {
    std::vector<double> offsets;
    for (std::size_t i = 0; i < facts.signals.size(); ++i) {
        offsets.resize(channelsOf(facts, i + 1), facts.centerFrequencies[i]);
    }
    return offsets;
}

void presetEstimator(const SessionFacts& facts, double rate, DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    const bool anyComplex =
        std::any_of(facts.signals.begin(), facts.signals.end(), [](const auto& signal) { return signal.isComplex; });
    settings.preset(estimator, "sampleRate", asText(rate));
    settings.preset(estimator, "frequencyRange", anyComplex ? "centered" : "one-sided");
    settings.preset(estimator, "frequencyOffset", asText(frequencyOffsets(facts)));
    settings.preset(estimator, "inputDataType", join(std::vector<std::string>(facts.signals.size(), "double"), ","));
    settings.preset(estimator, "inputRange", asText(std::vector<double>(facts.signals.size(), facts.fullScale)));
}

/// Lower and upper end of what the estimator shows, Hz, without frequency offsets.
struct FrequencyRange {
    double start;
    double stop;
};

FrequencyRange shownRange(const DeckSettings& settings, double rate) {
    const auto estimator = estimatorStage(settings);
    const auto number = [&](std::string_view option) { return *parseNumber(settings.value(estimator, option)); };
    const auto span = settings.value(estimator, "frequencySpan");
    if (span == "start-and-stop-frequencies") {
        return {number("startFrequency"), number("stopFrequency")};
    }
    if (span == "span-and-center-frequency") {
        const double half = number("span") / 2.0;
        return {number("centerFrequency") - half, number("centerFrequency") + half};
    }
    const bool centered = settings.value(estimator, "frequencyRange") == "centered";
    return {centered ? -rate / 2.0 : 0.0, rate / 2.0};
}

void linkUnits(DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    const auto units = shownSpectrumUnits(settings);
    const bool twoSided = settings.value(estimator, "frequencyRange") == "centered";
    for (const auto stage : measurementStages) {
        for (const auto& [option, text] : std::initializer_list<std::pair<const char*, std::string>>{
                 {"spectrumType", settings.value(estimator, "spectrumType")},
                 {"spectrumUnits", units},
                 {"twoSidedSpectrum", twoSided ? "true" : "false"}}) {
            if (settings.has(stage, option)) {
                settings.preset(stage, option, text);
            }
        }
    }
}

void linkOffsets(const SessionFacts& facts, DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    const auto offsets = split(settings.value(estimator, "frequencyOffset"), ',');
    for (const auto stage : measurementStages) {
        if (!settings.has(stage, "measurementChannelFrequencyOffset")) {
            continue;
        }
        // The offsets count the channels of all signals.
        auto index = static_cast<std::size_t>(*parseNumber(settings.value(stage, "measurementChannel")));
        const auto signal = static_cast<std::size_t>(*parseNumber(settings.value(stage, "measurementSignal")));
        index += channelsOf(facts, signal);
        settings.preset(stage, "measurementChannelFrequencyOffset", index < offsets.size() ? offsets[index] : "0");
    }
    if (settings.has(mask, "frequencyOffset")) {
        settings.preset(mask, "frequencyOffset", settings.value(estimator, "frequencyOffset"));
    }
}

/// Edges of the measured channel: all that is shown, or for adjacent channels the sixth part in the middle, so that two
/// neighbours on each side find room.
void linkChannel(const FrequencyRange& range, double rate, DeckSettings& settings) {
    if (!settings.has(channel, "channelMeasurementsType")) {
        return;
    }
    const double offset = *parseNumber(settings.value(channel, "measurementChannelFrequencyOffset"));
    // The lowest bin of a full two-sided spectrum lies one bin above minus half the rate.
    constexpr double binsOfFullSpan = 1024.0;
    const double start = std::max(range.start, -rate / 2.0 + rate / binsOfFullSpan) + offset;
    const double stop = range.stop + offset;
    if (settings.value(channel, "channelMeasurementsType") == "occupied-bandwidth") {
        settings.preset(channel, "measurementChannelStartFrequency", asText(start));
        settings.preset(channel, "measurementChannelStopFrequency", asText(stop));
        return;
    }
    const double center = (start + stop) / 2.0;
    const double width = (stop - start) / 6.0;
    settings.preset(channel, "measurementChannelStartFrequency", asText(center - width / 2.0));
    settings.preset(channel, "measurementChannelStopFrequency", asText(center + width / 2.0));
    settings.preset(channel, "adjacentBW", asText(width));
    settings.preset(channel, "acprOffsets", asText(std::vector<double>{width, 2.0 * width}));
}

/// Spots of the phase noise: the decades from ten bins of the shown range up to half of it.
void linkSpots(const FrequencyRange& range, DeckSettings& settings) {
    if (!settings.has(phaseNoise, "phaseNoiseFrequencyOffset")) {
        return;
    }
    const double width = range.stop - range.start;
    std::vector<double> spots;
    if (!(width > 0.0 && std::isfinite(width))) {
        return;  // the estimator refuses such a span or goes its own way
    }
    for (double spot = std::pow(10.0, std::ceil(std::log10(width / 100.0))); spot <= width / 2.0; spot *= 10.0) {
        spots.push_back(spot);
    }
    settings.preset(phaseNoise, "phaseNoiseFrequencyOffset", asText(spots));
}

/// Measurements on a simulation cover what the display shows, from the first frame on.
void applySimulationPresets(const SessionFacts& facts, DeckSettings& settings) {
    const auto& signal = facts.signals.front();
    const auto span = asText(facts.displaySpan.value_or(numCachedSamples * signal.sampleTime));
    for (const auto stage : settings.stages()) {
        for (const auto& [option, text] : std::initializer_list<std::pair<const char*, std::string>>{
                 {"isBlockInFrameProcMode", signal.frameSize > 1 ? "true" : "false"},
                 {"autoTimeRange", span},
                 {"customSpan", span}}) {
            if (settings.has(stage, option)) {
                settings.preset(stage, option, text);
            }
        }
    }
}

void applySpectrumPresets(const SessionFacts& session, DeckSettings& settings) {
    SessionFacts facts = session;
    std::erase_if(facts.signals, [](const auto& signal) { return signal.isInputPort; });
    const auto estimator = estimatorStage(settings);
    linkPorts(settings);
    const double sampleTime = facts.signals.front().sampleTime;
    if (std::any_of(facts.signals.begin(), facts.signals.end(),
                    [&](const auto& signal) { return signal.sampleTime != sampleTime; })) {
        throw UsageError("--deck spectrum: the inputs have different sample rates");
    }
    presetEstimator(facts, 1.0 / sampleTime, settings);
    const double rate = *parseNumber(settings.value(estimator, "sampleRate"));
    presetFrequencySpan(settings.value(estimator, "frequencyRange") == "centered" ? -rate / 2.0 : 0.0, rate / 2.0,
                        settings);
    const auto range = shownRange(settings, rate);
    linkUnits(settings);
    linkOffsets(facts, settings);
    if (settings.has(peaks, "frequencyLimits")) {
        settings.preset(peaks, "frequencyLimits", asText(std::vector<double>{range.start, range.stop}));
    }
    if (settings.has(mask, "frequencyLimits")) {
        // Its masks lie on the frequencies that are shown, offset and all.
        const auto offset = parseNumber(split(settings.value(estimator, "frequencyOffset"), ',').front()).value_or(0.0);
        settings.preset(mask, "frequencyLimits",
                        asText(std::vector<double>{range.start + offset, range.stop + offset}));
    }
    linkChannel(range, rate, settings);
    linkSpots(range, settings);
}

/// Each measurement is told the span for its first frame; from the second on it follows the display.
void applyTimePresets(const SessionFacts& facts, DeckSettings& settings) {
    const double span = facts.displaySpan.value_or(numCachedSamples * facts.signals.front().sampleTime);
    for (const auto stage : timeMeasurementStages) {
        settings.preset(stage, "customSpan", asText(span));
    }
}

}  // namespace

std::string shownSpectrumUnits(const DeckSettings& settings) {
    const auto estimator = estimatorStage(settings);
    const auto units = settings.value(estimator, "spectrumUnits");
    if (units != "auto" && units != "none") {
        return units;
    }
    const auto input = settings.value(estimator, "inputUnits");
    const bool asInput = units == "auto" && settings.value(estimator, "inputDomain") == "frequency" &&
                         input != "auto" && input != "none";
    return asInput ? input : "watts";
}

std::string_view estimatorStage(const DeckSettings& settings) {
    constexpr std::string_view blockflow = "bf_spectrum_estimator_filter";
    return settings.has(blockflow, "method") ? blockflow : "spectrum_estimator_filter";
}

void markInputPorts(const DeckSettings& settings, SessionFacts& facts) {
    const auto count = static_cast<std::size_t>(std::count_if(
        portOptions.begin(), portOptions.end(), [&](const auto* option) { return usesPort(settings, option); }));
    if (count >= facts.signals.size()) {
        throw UsageError("--blockflow: " + std::to_string(count) + " input ports need as many inputs behind the data");
    }
    for (std::size_t i = facts.signals.size() - count; i < facts.signals.size(); ++i) {
        facts.signals[i].isInputPort = true;
    }
}

void applyPresets(const Deck& deck, const SessionFacts& facts, DeckSettings& settings) {
    using wavedeck::driver::ChainKind;
    presetImpliedOptions(settings);
    if (deck.kind == ChainKind::Spectrum || deck.kind == ChainKind::BlockflowSpectrum) {
        applySpectrumPresets(facts, settings);
    } else if (deck.kind == ChainKind::Time) {
        applyTimePresets(facts, settings);
    } else if (deck.kind == ChainKind::BlockflowTime) {
        applySimulationPresets(facts, settings);
    }
}

bool isLinked(std::string_view stage, std::string_view option) {
    return std::find(measurementStages.begin(), measurementStages.end(), stage) != measurementStages.end() &&
           std::find(linkedOptions.begin(), linkedOptions.end(), option) != linkedOptions.end();
}

}  // namespace program
