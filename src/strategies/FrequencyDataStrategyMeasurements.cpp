// What a spectrum message carries besides the signals: the measurements whose stages are active.
#include "BaseFilter.h"
#include "ChannelMeasurementsFilter.h"
#include "DistortionMeasurementsFilter.h"
#include "FrequencyDataStrategy.h"
#include "PeakFinderFilter.h"
#include "PhaseNoiseFilter.h"
#include "SpectralMaskTesterFilter.h"

namespace dspwavedecks {

void FrequencyDataStrategy::addMeasurementInformation(ObjectPointer& measurements) {
    measurements->set("signalAndChannel", BaseFilter::packageImpl(clientID));
    attachIfActive(measurements, "channel", {"channel_measurements_filter"}, ChannelMeasurementsFilter::packageImpl);
    attachIfActive(measurements, "distortion", {"distortion_measurements_filter"},
                   DistortionMeasurementsFilter::packageImpl);
    attachIfActive(measurements, "peaks", {"frequency_peak_finder_filter"}, PeakFinderFilter::packageImpl);
    attachIfActive(measurements, "spectralMask", {"spectral_mask_tester_filter"},
                   SpectralMaskTesterFilter::packageImpl);
}

bool FrequencyDataStrategy::hasPhaseNoise() const {
    return isStageActive("phase_noise_filter") && PhaseNoiseFilter::isDataReady(clientID);
}

DataStrategy::ObjectPointer FrequencyDataStrategy::packagePhaseNoise(int signal, int numChannels) const {
    return PhaseNoiseFilter::packageImpl(clientID, signal, numChannels);
}

}  // namespace dspwavedecks
