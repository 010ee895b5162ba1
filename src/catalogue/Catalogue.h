#pragma once

#include <array>
#include <string_view>

#include "BaseOptions.h"
#include "MagnitudePhaseOptions.h"
#include "Option.h"
#include "PeakFinderOptions.h"
#include "SignalStatisticsOptions.h"
#include "SimulationOptions.h"
#include "SpectrumMeasurementOptions.h"
#include "SpectrumOptions.h"
#include "Stage.h"
#include "TimeMeasurementOptions.h"
#include "TriggerOptions.h"

/// All stages of the library and all their options, as data.
///
/// A filter names an option by its object, which may be a template argument (`template <const Option& option>`), so
/// that the name and, as ValueOf<option.kind>, the type of the value are known when it is compiled. Programs walk
/// `stages` or ask findStage() and findOption().
namespace dspwavedecks::catalogue {

/// All stages, the filters first.
inline constexpr std::array stages{
    Stage{"spectrum_estimator_filter", "SpectrumEstimatorFilter", StageKind::Filter, Chains::Spectrum,
          "estimates spectra and spectrograms from time or frequency data", spectrum::options},
    Stage{"bf_spectrum_estimator_filter", "BFSpectrumEstimatorFilter", StageKind::Filter, Chains::BlockflowSpectrum,
          "estimates spectra of a block-diagram simulation, with parameters on input ports",
          blockflowSpectrum::options},
    Stage{"bf_spectrum_data_aggregator_filter", "BFSpectrumDataAggregatorFilter", StageKind::Filter,
          Chains::BlockflowSpectrum, "lays spectra out in rows of the simulation's frame size",
          spectrumDataAggregator::options},
    Stage{"bf_input_port_parameters_handler_filter", "BFInputPortParametersHandlerFilter", StageKind::Filter,
          Chains::BlockflowSpectrum, "takes frequency vector, RBW and VBW from input ports",
          inputPortParameters::options},
    Stage{"spectrum_thinner_filter", "SpectrumThinnerFilter", StageKind::Filter, Chains::Spectrum,
          "reduces the points of a spectrum for display", spectrumThinner::options},
    Stage{"peak_finder_filter", "PeakFinderFilter", StageKind::Filter, Chains::Frame | Chains::Response,
          "finds the peaks of a frame or of a response", peakFinder::options},
    Stage{"frequency_peak_finder_filter", "FrequencyPeakFinderFilter", StageKind::Filter,
          Chains::Spectrum | Chains::BlockflowSpectrum, "finds the peaks of a spectrum or of a hold trace",
          frequencyPeakFinder::options},
    Stage{"channel_measurements_filter", "ChannelMeasurementsFilter", StageKind::Filter,
          Chains::Spectrum | Chains::BlockflowSpectrum,
          "measures channel power, occupied bandwidth and adjacent channel power", channelMeasurements::options},
    Stage{"distortion_measurements_filter", "DistortionMeasurementsFilter", StageKind::Filter,
          Chains::Spectrum | Chains::BlockflowSpectrum, "measures harmonic and intermodulation distortion",
          distortionMeasurements::options},
    Stage{"phase_noise_filter", "PhaseNoiseFilter", StageKind::Filter, Chains::Spectrum | Chains::BlockflowSpectrum,
          "measures phase noise around a carrier", phaseNoise::options},
    Stage{"spectral_mask_tester_filter", "SpectralMaskTesterFilter", StageKind::Filter,
          Chains::Spectrum | Chains::BlockflowSpectrum, "tests a spectrum against an upper and a lower mask",
          spectralMask::options},
    Stage{"signal_statistics_filter", "SignalStatisticsFilter", StageKind::Filter, Chains::Frame,
          "computes the statistics of a frame", signalStatistics::options},
    Stage{"dsp_wavedeck_measurements_data_cache_filter", "MeasurementsDataCacheFilter", StageKind::Filter, Chains::Time,
          "keeps the newest samples for the time measurements", measurementsDataCache::options},
    Stage{"time_signal_statistics_filter", "TimeSignalStatisticsFilter", StageKind::Filter, Chains::Time,
          "computes the statistics of a span of time", signalStatistics::options},
    Stage{"time_peak_finder_filter", "TimePeakFinderFilter", StageKind::Filter, Chains::Time,
          "finds the peaks in a span of time", peakFinder::options},
    Stage{"bilevel_measurements_filter", "BilevelMeasurementsFilter", StageKind::Filter, Chains::Time,
          "measures state levels, transitions, aberrations and cycles of pulses", bilevelMeasurements::options},
    Stage{"trigger_filter", "TriggerFilter", StageKind::Filter, Chains::Time,
          "finds the trigger events that hold the picture still", trigger::options},
    Stage{"magnitude_phase_filter", "MagPhaseFilter", StageKind::Filter,
          Chains::Time | Chains::Frame | Chains::BlockflowTime,
          "replaces the channels of marked signals by magnitude and phase in degrees", magPhase::options},
    Stage{"digital_filter_frequency_response_filter", "DigitalFilterFrequencyResponseFilter", StageKind::Filter,
          Chains::Response, "computes the frequency response of the coefficients that come in",
          digitalFilterFrequencyResponse::options},
    Stage{"magnitude_phase_response_filter", "MagPhaseResponseFilter", StageKind::Filter, Chains::Response,
          "turns a complex response into magnitude and phase in degrees", magPhaseResponse::options},
    Stage{"simulation_meta_data_filter", "SimulationMetaDataFilter", StageKind::Filter,
          Chains::Time | Chains::Spectrum | Chains::Frame | Chains::Response,
          "counts frames and samples and keeps the time of the stream", simulationMetaData::options},
    Stage{"bf_simulation_meta_data_filter", "BFSimulationMetaDataFilter", StageKind::Filter,
          Chains::BlockflowTime | Chains::BlockflowSpectrum,
          "keeps the time and the counts of a block-diagram simulation", simulationMetaData::blockflowOptions},
    Stage{"bf_app_simulation_meta_data_filter", "BFAppSimulationMetaDataFilter", StageKind::Filter,
          Chains::BlockflowTime | Chains::BlockflowSpectrum,
          "keeps the time and the counts of a block-diagram simulation shown in an application",
          simulationMetaData::blockflowOptions},
    Stage{"bf_simulation_pacer_filter", "BFSimulationPacerFilter", StageKind::Filter,
          Chains::BlockflowTime | Chains::BlockflowSpectrum, "holds a simulation back until the display has caught up",
          simulationPacer::options},
    Stage{"bf_wavedeck_measurements_data_cache_filter", "BFMeasurementsDataCacheFilter", StageKind::Filter,
          Chains::BlockflowTime, "keeps the samples of a simulation for the time measurements",
          blockflowRange::cacheOptions},
    Stage{"bf_bilevel_measurements_filter", "BFBilevelMeasurementsFilter", StageKind::Filter, Chains::BlockflowTime,
          "measures pulses in a span of simulation time", blockflowRange::bilevelOptions},
    Stage{"bf_time_peak_finder_filter", "BFTimePeakFinderFilter", StageKind::Filter, Chains::BlockflowTime,
          "finds the peaks in a span of simulation time", blockflowRange::peakFinderOptions},
    Stage{"bf_time_signal_statistics_filter", "BFTimeSignalStatisticsFilter", StageKind::Filter, Chains::BlockflowTime,
          "computes the statistics of a span of simulation time", blockflowRange::statisticsOptions},
    Stage{"bf_trigger_filter", "BFTriggerFilter", StageKind::Filter, Chains::BlockflowTime,
          "finds the trigger events of a simulation", blockflowTrigger::options},
    Stage{"dsp_wavedeck_time_data_strategy", "TimeDataStrategy", StageKind::Strategy,
          Chains::Time | Chains::BlockflowTime, "makes the message of a time display"},
    Stage{"dsp_wavedeck_frequency_data_strategy", "FrequencyDataStrategy", StageKind::Strategy, Chains::Spectrum,
          "makes the message of a spectrum display"},
    Stage{"bf_dsp_wavedeck_frequency_data_strategy", "BFFrequencyDataStrategy", StageKind::Strategy,
          Chains::BlockflowSpectrum, "makes the message of a spectrum display of a simulation"},
    Stage{"dsp_wavedeck_frame_data_strategy", "FrameDataStrategy", StageKind::Strategy, Chains::Frame,
          "makes the message of a frame display"},
    Stage{"magnitude_phase_response_data_strategy", "MagPhaseResponseDataStrategy", StageKind::Strategy,
          Chains::Response, "makes the message of a response display"},
};
static_assert(stages.size() == 34);

/// The stage of that name, null if there is none.
constexpr const Stage* findStage(std::string_view name) {
    for (const Stage& stage : stages) {
        if (stage.name == name) {
            return &stage;
        }
    }
    return nullptr;
}

/// The option of that name at the stage, null if the stage has none.
constexpr const Option* findOption(const Stage& stage, std::string_view name) {
    for (const Option* option : stage.options) {
        if (option->name == name) {
            return option;
        }
    }
    return nullptr;
}

}  // namespace dspwavedecks::catalogue
