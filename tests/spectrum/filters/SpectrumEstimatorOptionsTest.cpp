// Every option of the spectrum estimator changes something that can be seen: its record, its output, or both.
#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "LoadedLibrary.h"
#include "SpectrumFilterTestSupport.h"
#include "SpectrumOptions.h"

namespace {

using dspwavedecks::catalogue::Kind;
using testsupport::PropertyList;
using testsupport::TestClient;

/// Adds "name=value name=value ...", each in the kind that the catalogue says; a list has one value repeated 512 times.
void addOptions(PropertyList& list, const std::string& text) {
    std::istringstream stream(text);
    for (std::string item; stream >> item;) {
        const std::string name = item.substr(0, item.find('='));
        const std::string value = item.substr(name.size() + 1);
        for (const dspwavedecks::catalogue::Option* option : dspwavedecks::catalogue::spectrum::options) {
            if (option->name != name) {
                continue;
            } else if (option->kind == Kind::Logical) {
                list.addLogical(name, value == "true");
            } else if (option->kind == Kind::Text) {
                list.addChar(name, value);
            } else if (option->kind == Kind::Doubles) {
                list.addDoubles(name, std::vector<double>(512, std::stod(value)));
            } else {
                list.addDouble(name, std::stod(value));
            }
        }
    }
}

/// All that a client can see of an estimator that was set up with the options and fed six frames, as numbers.
std::string look(const std::string& options) {
    static const testsupport::LoadedLibrary library(DSPWAVEDECKS_LIBRARY);
    TestClient client;
    const auto filter = library.makeFilter("spectrum_estimator_filter");
    PropertyList list = client.setup();
    addOptions(list, options);
    filter->tuneImpl(list);
    std::ostringstream sight;
    for (unsigned frame = 0; frame < 6; ++frame) {
        std::vector<double> samples = testsupport::noise(700, frame);
        samples[350] = frame == 1 ? std::numeric_limits<double>::quiet_NaN() : 0.0;
        for (const double value : testsupport::feed(*filter, samples)) {
            sight << value << ' ';
        }
    }
    const auto record = testsupport::record(client);
    for (const auto& trace : {record.frequencyOffset, record.maxHoldTrace, record.minHoldTrace}) {
        sight << '\n' << trace.size();
    }
    dspwavedecks::SpectrumEstimatorFilter::packageImpl(client.name())->stringify(sight);
    sight << record.spectrogramChannel;
    return sight.str();
}

TEST(SpectrumEstimatorOptions, allHaveTheirEffect) {
    const struct {
        const char* option;
        const char* context;  ///< what it needs to have an effect
    } rows[] = {
        {"inputDomain=frequency", ""},
        {"spectrumType=power-density", ""},
        {"showSpectrum=false", ""},
        {"showSpectrogram=true", ""},
        {"sampleRate=8000", ""},
        {"frequencyOffset=7", ""},
        {"method=filter-bank", ""},
        {"frequencyRange=one-sided", ""},
        {"defaultSegmentLength=512", ""},
        {"maxSegmentLength=500", "enableMaxSegmentLengthThreshold=true"},
        {"frequencyResolutionMethod=window-length", "windowLength=300"},
        {"autoRBW=false", ""},
        {"windowInvariantSamplesPerUpdate=true", ""},
        {"rbw=50", "autoRBW=false"},
        {"autoFFTLength=false", "fftLength=4096"},
        {"fftLength=8192", "autoFFTLength=false"},
        {"autoFrequencyVector=false", "inputDomain=frequency"},
        {"frequencyVector=5", "inputDomain=frequency autoFrequencyVector=false"},
        {"numTapsPerBand=4", "method=filter-bank defaultSegmentLength=64"},
        {"windowLength=500", "frequencyResolutionMethod=window-length"},
        {"frequencySpan=span-and-center-frequency", "span=2000"},
        {"span=3000", "frequencySpan=span-and-center-frequency"},
        {"centerFrequency=1000", "frequencySpan=span-and-center-frequency showSpectrogram=true span=8000"},
        {"startFrequency=-2000", "frequencySpan=start-and-stop-frequencies"},
        {"stopFrequency=2000", "frequencySpan=start-and-stop-frequencies"},
        {"overlapPercent=50", ""},
        {"window=flat-top", ""},
        {"customWindow=1", "window=custom defaultSegmentLength=512"},
        {"sidelobeAttenuation=90", "window=kaiser"},
        {"averagingMethod=running", "spectralAverages=4"},
        {"forgettingFactor=0.5", ""},
        {"autoVBW=false", "averagingMethod=vbw"},
        {"vbw=1", "averagingMethod=vbw autoVBW=false"},
        {"spectralAverages=8", "averagingMethod=running"},
        {"spectrumUnits=dbfs", ""},
        {"inputUnits=watts", "inputDomain=frequency"},
        {"referenceLoad=50", ""},
        {"autoFullScale=false", "spectrumUnits=dbfs fullScale=2"},
        {"fullScale=4", "spectrumUnits=dbfs autoFullScale=false"},
        {"plotMaxHoldTrace=true", ""},
        {"plotMinHoldTrace=true", ""},
        {"spectrogramChannel=1", ""},
        {"autoTimeSpan=false", "showSpectrogram=true"},
        {"timeSpan=5", "showSpectrogram=true autoTimeSpan=false"},
        {"autoTimeResolution=false", "showSpectrogram=true"},
        {"timeResolution=0.5", "showSpectrogram=true autoTimeResolution=false"},
        {"inputRange=32768", "spectrumUnits=dbfs"},
        {"allowTransientAveraging=false", "method=filter-bank defaultSegmentLength=64"},
        {"useWelchForFilterBankTransient=true", "method=filter-bank"},
        {"enableMaxSegmentLengthThreshold=true", "maxSegmentLength=500"},
        {"enableDesiredSegmentLengthThreshold=false", ""},
        {"useNaNsInCalculatingAverages=true", ""},
    };
    std::string seen =
        " action clientID numSignals numChannels frameSize measurementSignal measurementChannel "
        // Chooses between kernels that agree to rounding.
        "useHalideForFIRPolyphaseAnalysis "
        // Tells the estimator of a block-diagram simulation how to find the full scale.
        "inputDataType ";
    for (const auto& row : rows) {
        const std::string context = row.context;
        EXPECT_NE(look(context), look(context + " " + row.option)) << row.option;
        seen += std::string(row.option, std::string(row.option).find('=')) + " ";
    }
    for (const dspwavedecks::catalogue::Option* option : dspwavedecks::catalogue::spectrum::options) {
        EXPECT_NE(std::string::npos, seen.find(std::string(" ").append(option->name) + " ")) << option->name;
    }
}

}  // namespace
