// Every option of the spectrum estimator changes something that can be seen: its record, its output, or both.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "LoadedLibrary.h"
#include "SpectrumOptions.h"
#include "TestClient.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace {

using dspwavedecks::spectrumEstimatorMetaDataStruct;
using testsupport::PropertyList;
using testsupport::TestClient;

/// All that a client can see of a run.
struct Sight {
    spectrumEstimatorMetaDataStruct record;
    std::vector<double> outputs;
};

bool isSame(const std::vector<double>& a, const std::vector<double>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](double x, double y) { return x == y || (x != x && y != y); });
}

bool isSame(const Sight& a, const Sight& b) {
    return static_cast<const dspwavedecks::spectrumEstimatorFigures&>(a.record) == b.record &&
           a.record.frequencyOffset == b.record.frequencyOffset &&
           isSame(a.record.maxHoldTrace, b.record.maxHoldTrace) &&
           isSame(a.record.minHoldTrace, b.record.minHoldTrace) && isSame(a.outputs, b.outputs);
}

using Adder = std::function<void(PropertyList&)>;

Adder number(const char* name, double value) {
    return [=](PropertyList& list) { list.addDouble(name, value); };
}
Adder numbers(const char* name, std::vector<double> values) {
    return [=](PropertyList& list) { list.addDoubles(name, values); };
}
Adder truth(const char* name, bool value) {
    return [=](PropertyList& list) { list.addLogical(name, value); };
}
Adder word(const char* name, const char* value) {
    return [=](PropertyList& list) { list.addChar(name, value); };
}

/// Sets an estimator up with the options, feeds it six frames and looks at what is there.
Sight look(const std::vector<Adder>& options) {
    static const testsupport::LoadedLibrary library(DSPWAVEDECKS_LIBRARY);
    TestClient client;
    const auto filter = library.makeFilter("spectrum_estimator_filter");
    PropertyList list = client.setup();
    for (const Adder& option : options) {
        option(list);
    }
    filter->tuneImpl(list);
    Sight sight;
    std::uint64_t state = 1;
    for (int frame = 0; frame < 6; ++frame) {
        std::vector<double> samples(700);
        for (double& sample : samples) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            sample = static_cast<double>(state >> 11) * 0x1p-52 - 1.0;
        }
        samples[350] = frame == 1 ? std::numeric_limits<double>::quiet_NaN() : 0.0;
        const std::vector<double> out = testsupport::feed(*filter, samples);
        sight.outputs.insert(sight.outputs.end(), out.begin(), out.end());
    }
    sight.record = *boost::any_cast<spectrumEstimatorMetaDataStruct>(client.board().find("spectrumEstimatorMetaData"));
    return sight;
}

struct Row {
    const char* name;  ///< the option that is looked at
    Adder option;
    std::vector<Adder> context;  ///< what it needs to have an effect
};

TEST(SpectrumEstimatorOptions, allHaveTheirEffect) {
    const Adder bank = word("method", "filter-bank");
    const Adder spectra = word("inputDomain", "frequency");
    const Adder ownVector = truth("autoFrequencyVector", false);
    const Adder ownRBW = truth("autoRBW", false);
    const Adder band = word("frequencySpan", "span-and-center-frequency");
    const Adder edges = word("frequencySpan", "start-and-stop-frequencies");
    const Adder dbfs = word("spectrumUnits", "dbfs");
    const Adder lines = truth("showSpectrogram", true);
    const Adder early = truth("enableDesiredSegmentLengthThreshold", false);
    std::vector<double> grid(700);
    for (std::size_t i = 0; i < grid.size(); ++i) {
        grid[i] = static_cast<double>(i);
    }
    const Row rows[] = {
        {"inputDomain", spectra, {}},
        {"spectrumType", word("spectrumType", "power-density"), {}},
        {"showSpectrum", truth("showSpectrum", false), {truth("plotMaxHoldTrace", true)}},
        {"showSpectrogram", lines, {}},
        {"sampleRate", number("sampleRate", 8000), {}},
        {"frequencyOffset", numbers("frequencyOffset", {7}), {}},
        {"method", bank, {}},
        {"frequencyRange", word("frequencyRange", "one-sided"), {}},
        {"defaultSegmentLength", number("defaultSegmentLength", 512), {}},
        {"maxSegmentLength", number("maxSegmentLength", 500), {truth("enableMaxSegmentLengthThreshold", true)}},
        {"frequencyResolutionMethod",
         word("frequencyResolutionMethod", "window-length"),
         {number("windowLength", 300)}},
        {"autoRBW", ownRBW, {}},
        {"windowInvariantSamplesPerUpdate", truth("windowInvariantSamplesPerUpdate", true), {}},
        {"rbw", number("rbw", 50), {ownRBW}},
        {"autoFFTLength", truth("autoFFTLength", false), {number("fftLength", 4096)}},
        {"fftLength", number("fftLength", 8192), {truth("autoFFTLength", false)}},
        {"autoFrequencyVector", ownVector, {spectra}},
        {"frequencyVector", numbers("frequencyVector", grid), {spectra, ownVector}},
        {"numTapsPerBand", number("numTapsPerBand", 4), {bank, number("defaultSegmentLength", 64)}},
        {"windowLength",
         number("windowLength", 500),
         {word("frequencyResolutionMethod", "window-length"), word("window", "hann")}},
        {"frequencySpan", band, {number("span", 2000)}},
        {"span", number("span", 3000), {band}},
        {"centerFrequency", number("centerFrequency", 1000), {band, lines, number("span", 8000)}},
        {"startFrequency", number("startFrequency", -2000), {edges}},
        {"stopFrequency", number("stopFrequency", 2000), {edges}},
        {"overlapPercent", number("overlapPercent", 50), {}},
        {"window", word("window", "flat-top"), {}},
        {"customWindow",
         numbers("customWindow", std::vector<double>(512, 1.0)),
         {word("window", "custom"), number("defaultSegmentLength", 512)}},
        {"sidelobeAttenuation", number("sidelobeAttenuation", 90), {word("window", "kaiser")}},
        {"averagingMethod", word("averagingMethod", "running"), {number("spectralAverages", 4)}},
        {"forgettingFactor", number("forgettingFactor", 0.5), {}},
        {"autoVBW", truth("autoVBW", false), {word("averagingMethod", "vbw")}},
        {"vbw", number("vbw", 1), {word("averagingMethod", "vbw"), truth("autoVBW", false)}},
        {"spectralAverages", number("spectralAverages", 8), {word("averagingMethod", "running")}},
        {"spectrumUnits", dbfs, {}},
        {"inputUnits", word("inputUnits", "watts"), {spectra}},
        {"referenceLoad", number("referenceLoad", 50), {}},
        {"autoFullScale", truth("autoFullScale", false), {dbfs, number("fullScale", 2)}},
        {"fullScale", number("fullScale", 4), {dbfs, truth("autoFullScale", false)}},
        {"plotMaxHoldTrace", truth("plotMaxHoldTrace", true), {}},
        {"plotMinHoldTrace", truth("plotMinHoldTrace", true), {}},
        {"spectrogramChannel", number("spectrogramChannel", 1), {}},
        {"autoTimeSpan", truth("autoTimeSpan", false), {lines}},
        {"timeSpan", number("timeSpan", 5), {lines, truth("autoTimeSpan", false)}},
        {"autoTimeResolution", truth("autoTimeResolution", false), {lines}},
        {"timeResolution", number("timeResolution", 0.5), {lines, truth("autoTimeResolution", false)}},
        {"inputRange", numbers("inputRange", {32768}), {dbfs}},
        {"allowTransientAveraging",
         truth("allowTransientAveraging", false),
         {bank, number("defaultSegmentLength", 64)}},
        {"useWelchForFilterBankTransient", truth("useWelchForFilterBankTransient", true), {bank}},
        {"enableMaxSegmentLengthThreshold",
         truth("enableMaxSegmentLengthThreshold", true),
         {number("maxSegmentLength", 500)}},
        {"enableDesiredSegmentLengthThreshold", early, {}},
        {"useNaNsInCalculatingAverages", truth("useNaNsInCalculatingAverages", true), {}},
    };
    std::vector<std::string> seen = {"action", "clientID", "numSignals", "numChannels", "frameSize",
                                     "measurementSignal", "measurementChannel",
                                     // Chooses between kernels that agree to rounding: no effect to be seen.
                                     "useHalideForFIRPolyphaseAnalysis",
                                     // Tells the estimator of a block-diagram simulation how to find the full scale.
                                     "inputDataType"};
    for (const Row& row : rows) {
        std::vector<Adder> options = row.context;
        const Sight without = look(options);
        options.push_back(row.option);
        EXPECT_FALSE(isSame(without, look(options))) << row.name;
        seen.emplace_back(row.name);
    }
    for (const dspwavedecks::catalogue::Option* option : dspwavedecks::catalogue::spectrum::options) {
        EXPECT_EQ(1, std::count(seen.begin(), seen.end(), option->name)) << option->name;
    }
}

}  // namespace
