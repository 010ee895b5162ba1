#include "ChainKind.h"

#include <array>
#include <initializer_list>
#include <string_view>

#include "DriverError.h"

namespace wavedeck::driver {

namespace {

/// What one stage is handed, where that is not the chain's current data.
struct ViewRow {
    std::string_view stage;
    StageView view;
};

// The records count raw samples, whatever stages stand ahead of them; a simulation's record and what steers it read the
// head. Estimators stand where current data is raw.
constexpr std::array viewRows{
    ViewRow{"simulation_meta_data_filter", StageView::Raw},
    ViewRow{"bf_simulation_meta_data_filter", StageView::Raw},
    ViewRow{"bf_app_simulation_meta_data_filter", StageView::Raw},
    ViewRow{"bf_simulation_pacer_filter", StageView::Raw},
    ViewRow{"bf_input_port_parameters_handler_filter", StageView::Raw},
    ViewRow{"frequency_peak_finder_filter", StageView::NewestLine},
    ViewRow{"channel_measurements_filter", StageView::NewestLine},
    ViewRow{"distortion_measurements_filter", StageView::NewestLine},
    ViewRow{"phase_noise_filter", StageView::NewestLine},
    ViewRow{"spectral_mask_tester_filter", StageView::NewestLine},
};

/// The strategy of each kind of chain.
struct KindRow {
    ChainKind kind;
    const char* name;
    std::string_view strategy;
};

constexpr std::array kindRows{
    KindRow{ChainKind::Time, "time", "dsp_wavedeck_time_data_strategy"},
    KindRow{ChainKind::Spectrum, "spectrum", "dsp_wavedeck_frequency_data_strategy"},
    KindRow{ChainKind::Frame, "frame", "dsp_wavedeck_frame_data_strategy"},
    KindRow{ChainKind::Response, "response", "magnitude_phase_response_data_strategy"},
    KindRow{ChainKind::BlockflowTime, "Blockflow time", "dsp_wavedeck_time_data_strategy"},
    KindRow{ChainKind::BlockflowSpectrum, "Blockflow spectrum", "bf_dsp_wavedeck_frequency_data_strategy"},
};

}  // namespace

StageView viewOf(const std::string& stage) {
    for (const ViewRow& row : viewRows) {
        if (row.stage == stage) {
            return row.view;
        }
    }
    return StageView::Current;
}

bool takesDataSignalsOnly(const std::string& stage) {
    return viewOf(stage) == StageView::NewestLine;
}

ChainKind chainKindOf(const std::string& strategy, bool anyBlockflowStage) {
    for (const KindRow& row : kindRows) {
        if (row.strategy == strategy && (row.kind != ChainKind::Time || !anyBlockflowStage)) {
            return row.kind;
        }
    }
    throw DriverError("no kind of chain has the strategy \"" + strategy + "\"");
}

const char* chainKindName(ChainKind kind) {
    for (const KindRow& row : kindRows) {
        if (row.kind == kind) {
            return row.name;
        }
    }
    return "";
}

}  // namespace wavedeck::driver
