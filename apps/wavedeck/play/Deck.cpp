#include "Deck.h"

#include <algorithm>
#include <array>
#include <string>

#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

using wavedeck::driver::ChainKind;

constexpr std::string_view timeStages[] = {
    "simulation_meta_data_filter",
    "magnitude_phase_filter",
    "dsp_wavedeck_measurements_data_cache_filter",
    "time_signal_statistics_filter",
    "time_peak_finder_filter",
    "bilevel_measurements_filter",
    "trigger_filter",
};

constexpr std::string_view spectrumStages[] = {
    "simulation_meta_data_filter", "spectrum_estimator_filter",      "frequency_peak_finder_filter",
    "channel_measurements_filter", "distortion_measurements_filter", "phase_noise_filter",
    "spectral_mask_tester_filter",
};

constexpr std::string_view frameStages[] = {
    "simulation_meta_data_filter",
    "magnitude_phase_filter",
    "signal_statistics_filter",
    "peak_finder_filter",
};

constexpr std::string_view responseStages[] = {
    "simulation_meta_data_filter",
    "digital_filter_frequency_response_filter",
    "magnitude_phase_response_filter",
    "peak_finder_filter",
};

constexpr std::string_view blockflowTimeStages[] = {
    "bf_simulation_meta_data_filter",   "bf_simulation_pacer_filter",
    "magnitude_phase_filter",           "bf_wavedeck_measurements_data_cache_filter",
    "bf_time_signal_statistics_filter", "bf_time_peak_finder_filter",
    "bf_bilevel_measurements_filter",   "bf_trigger_filter",
};

constexpr std::string_view blockflowSpectrumStages[] = {
    "bf_simulation_meta_data_filter",     "bf_simulation_pacer_filter",   "bf_input_port_parameters_handler_filter",
    "bf_spectrum_estimator_filter",       "frequency_peak_finder_filter", "channel_measurements_filter",
    "distortion_measurements_filter",     "phase_noise_filter",           "spectral_mask_tester_filter",
    "bf_spectrum_data_aggregator_filter",
};

constexpr std::array<Deck, 6> decks{{
    {"time", ChainKind::Time, timeStages, "dsp_wavedeck_time_data_strategy"},
    {"spectrum", ChainKind::Spectrum, spectrumStages, "dsp_wavedeck_frequency_data_strategy"},
    {"frame", ChainKind::Frame, frameStages, "dsp_wavedeck_frame_data_strategy"},
    {"response", ChainKind::Response, responseStages, "magnitude_phase_response_data_strategy"},
    {"time", ChainKind::BlockflowTime, blockflowTimeStages, "dsp_wavedeck_time_data_strategy"},
    {"spectrum", ChainKind::BlockflowSpectrum, blockflowSpectrumStages, "bf_dsp_wavedeck_frequency_data_strategy"},
}};

}  // namespace

std::vector<std::string_view> deckNames(bool blockflow) {
    std::vector<std::string_view> names;
    for (const auto& entry : decks) {
        if (isBlockflow(entry.kind) == blockflow) {
            names.push_back(entry.name);
        }
    }
    return names;
}

const Deck& findDeck(std::string_view name, bool blockflow) {
    const auto* deck = std::find_if(decks.begin(), decks.end(), [&](const Deck& entry) {
        return entry.name == name && isBlockflow(entry.kind) == blockflow;
    });
    if (deck == decks.end()) {
        throw UsageError("--deck: `" + std::string(name) + "` is none of " + join(deckNames(blockflow), " ") +
                         (blockflow ? ", the decks of --blockflow" : ""));
    }
    return *deck;
}

std::vector<std::string> defaultDecks() {
    return {"time", "spectrum"};
}

TracesTarget splitTraces(const std::string& text) {
    const auto equals = text.find('=');
    const auto name = text.substr(0, equals);
    const bool isWord = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
    return equals != std::string::npos && isWord ? TracesTarget{name, text.substr(equals + 1)} : TracesTarget{"", text};
}

}  // namespace program
