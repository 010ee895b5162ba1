#pragma once

#include <string_view>

#include "DeckSettings.h"
#include "Report.h"
#include "wavedeck/WaveDeckClientSettings.h"

/// Sections of the report on measurements, made from the records that the stages leave on the client's board.
namespace program {

/// Statistics of the last frame or of the display span: what the stage's options ask for.
ReportSection reportStatistics(const wavedeck::WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage);

}  // namespace program
