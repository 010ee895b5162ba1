#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "DeckSettings.h"
#include "Report.h"
#include "spectrumEstimatorMetaDataStruct.h"
#include "wavedeck/WaveDeckClientSettings.h"

/// Sections of the report on measurements, made from the records that the stages leave on the client's board. Each
/// shows what the stage's options ask for; it has no figures when nothing was measured yet.
namespace program {

using wavedeck::WaveDeckClientSettings;

/// Statistics of the last frame or of the display span.
ReportSection reportStatistics(const WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage);

/// Peaks of the last frame, of the display span, or of the spectrum, the strongest first.
ReportSection reportPeaks(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage);

/// State levels, transitions, aberrations and cycles of pulses over the display span.
ReportSection reportPulses(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage);

/// What the trigger was set to; what it found stands in the messages, of which the deck keeps account.
ReportSection reportTrigger(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage);

/// Channel power with occupied bandwidth, or adjacent channel power ratios.
ReportSection reportChannel(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage);

/// Harmonic distortion figures with the harmonics, or the third-order intercept.
ReportSection reportDistortion(const WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage);

/// Phase noise at the spot offsets.
ReportSection reportPhaseNoise(const WaveDeckClientSettings& board, const DeckSettings& settings,
                               std::string_view stage);

/// Standing of the mask test.
ReportSection reportMask(const WaveDeckClientSettings& board, const DeckSettings& settings, std::string_view stage);

/// Figures of the spectrum itself: span, resolution, window, averages, noise floor.
void addSpectrumFigures(const WaveDeckClientSettings& board, const DeckSettings& settings, ReportSection& section);

/// The newest spectrum of a channel: [S] display units; empty where there is none.
std::span<const double> newestSpectrum(const dspwavedecks::spectrumEstimatorMetaDataStruct& record, std::size_t signal,
                                       std::size_t channel);

/// Which signal and channel a stage measures, counted from 0 as the options do.
ReportValue measuredChannel(const DeckSettings& settings, std::string_view stage);

/// The unit of the levels of the spectrum that is shown: "dBm", of a density "dBm/Hz". The spectrum's type alone tells
/// a density: the words of "spectrumUnits" with "/hz" give the same numbers as those without.
std::string levelUnit(const DeckSettings& settings);

}  // namespace program
