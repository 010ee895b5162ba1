#include "DeckTraces.h"

#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include "BoardRecord.h"
#include "DeckPresets.h"
#include "EngineeringNumber.h"
#include "MeasurementReports.h"
#include "MessageText.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace program {
namespace {

using Json = nlohmann::json;
using Record = dspwavedecks::spectrumEstimatorMetaDataStruct;

std::string channelTitle(std::size_t signal, std::size_t channel) {
    return "signal " + std::to_string(signal) + " channel " + std::to_string(channel);
}

/// Adds the part of a hold trace that belongs to one of all channels.
void addHold(const char* name, const std::vector<double>& trace, std::size_t channel, std::size_t length,
             const std::string& title, TraceTable& table) {
    if ((channel + 1) * length <= trace.size()) {
        const auto begin = trace.begin() + static_cast<std::ptrdiff_t>(channel * length);
        table.columns.push_back({name + title, {begin, begin + static_cast<std::ptrdiff_t>(length)}});
    }
}

void addSpectra(const Record& record, const DeckSettings& settings, TraceTable& table) {
    const auto unit = " (" + levelUnit(settings) + "; RBW " + formatQuantity(record.transientRBW, "Hz") + ")";
    std::size_t index = 0;  // of all channels
    for (std::size_t signal = 0; signal < record.numChannels.size(); ++signal) {
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(record.numChannels[signal]); ++channel) {
            const auto newest = newestSpectrum(record, signal, channel);
            if (newest.empty()) {
                continue;
            }
            auto frequencies = record.frequencyVector;
            for (double& frequency : frequencies) {
                frequency += index < record.frequencyOffset.size() ? record.frequencyOffset[index] : 0.0;
            }
            table.addAxis("frequency (Hz)", std::move(frequencies));
            const auto title = channelTitle(signal, channel) + unit;
            table.columns.push_back({title, {newest.begin(), newest.end()}});
            if (record.plotMaxHoldTrace) {
                addHold("maximum hold ", record.maxHoldTrace, index, record.spectrumLength, title, table);
            }
            if (record.plotMinHoldTrace) {
                addHold("minimum hold ", record.minHoldTrace, index, record.spectrumLength, title, table);
            }
            ++index;
        }
    }
}

/// The numbers of a list, with NaN where a message marks gaps.
std::vector<double> numbersOf(const Json& list, const Json& gaps) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> values;
    for (const auto& value : list) {
        values.push_back(value.is_number() ? value.get<double>() : nan);
    }
    for (const auto& gap : gaps) {
        if (gap.is_number_unsigned() && gap.get<std::size_t>() < values.size()) {
            values[gap.get<std::size_t>()] = nan;
        }
    }
    return values;
}

/// Adds a channel of a message with its axis.
void addChannel(const Json& channel, const std::string& axisTitle, double axisFactor, const std::string& title,
                TraceTable& table) {
    const auto* axisKey = channel.contains("time") ? "time" : "sample";
    auto axis = numbersOf(channel.value(axisKey, Json::array()), Json::array());
    for (double& value : axis) {
        value *= axisFactor;
    }
    table.addAxis(axisTitle, std::move(axis));
    table.columns.push_back(
        {title, numbersOf(channel.value("data", Json::array()), channel.value("NaNIdx", Json::array()))});
}

}  // namespace

TraceTable spectrumTraces(DeckSession& deck) {
    TraceTable table;
    const auto settings = deck.settings();
    deck.client().withInfo([&](wavedeck::WaveDeckClientInfo& info) {
        const auto* record = findRecord<Record>(info.getClientSettings(), "spectrumEstimatorMetaData");
        if (record == nullptr) {
            return;
        }
        const auto estimator = estimatorStage(settings);
        std::string remark = "spectrum: type " + settings.value(estimator, "spectrumType") + ", method " +
                             settings.value(estimator, "method");
        if (settings.value(estimator, "method") == "welch") {
            remark += ", window " + settings.value(estimator, "window");
        }
        table.remarks.push_back(remark + ", averages " + std::to_string(record->numSpectralAverages));
        addSpectra(*record, settings, table);
    });
    return table;
}

TraceTable messageTraces(DeckSession& deck, const Poco::JSON::Object& message, double rate) {
    TraceTable table;
    const auto settings = deck.settings();
    wavedeck::driver::MessageText writer;
    const auto json = Json::parse(writer.write(message));
    const auto facts = deck.client().facts();
    const bool isResponse = deck.kind() == wavedeck::driver::ChainKind::Response;
    // Responses are told as if every filter ran at this rate, Hz.
    constexpr double responseRate = 44100.0;
    const auto signals = json.value("signals", Json::array());
    for (std::size_t signal = 0; signal < signals.size(); ++signal) {
        const auto channels = signals[signal].value("channel", Json::array());
        const bool isComplex = signal < facts.signals.size() && facts.signals[signal].isComplex;
        for (std::size_t row = 0; row < channels.size(); ++row) {
            const std::size_t half = std::max<std::size_t>(channels.size() / 2, 1);
            if (isResponse) {
                const auto magnitude = settings.value("magnitude_phase_response_filter", "magnitudeDisplay");
                addChannel(channels[row], "frequency (Hz)", rate / responseRate,
                           row < half ? magnitude : "Phase (degrees)", table);
            } else {
                const auto title = channelTitle(signal, isComplex ? row % half : row);
                addChannel(channels[row], "time (s)", 1.0,
                           title + (!isComplex   ? ""
                                    : row < half ? " real part"
                                                 : " imaginary part"),
                           table);
            }
        }
    }
    return table;
}

}  // namespace program
