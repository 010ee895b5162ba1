#include "DistortionMeasurementsFilter.h"

#include <algorithm>

#include "Board.h"
#include "JsonArrays.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

DistortionMeasurementsFilter::DistortionMeasurementsFilter()
    : distortionMeasurements(std::make_unique<DistortionMeasurements>()) {}

DistortionMeasurementsFilter::~DistortionMeasurementsFilter() = default;

void DistortionMeasurementsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    auto& settings = getBoard();
    if (const auto rbw = getPublishedRBW()) {
        distortionMeasurements->setRBW(*rbw);
    }
    const MeasuredSpectrum spectrum = findMeasuredSpectrum(data, signal);
    board::write(settings, distortion,
                 distortionMeasurements->computeDistortion(spectrum.frequencies, spectrum.bins, spectrum.range));
    updateFilterSignalAndChannel();
}

void DistortionMeasurementsFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<distortionStruct>(getBoard(), distortion);
    namespace options = catalogue::distortionMeasurements;
    namespace common = catalogue::spectrumMeasurement;
    using Measurements = DistortionMeasurements;
    auto& measurements = *distortionMeasurements;
    readOptions(list, ifPresent<common::spectrumType>([&](const std::string& word) {
                    measurements.setSpectrumType(measurements.getSpectrumTypeEnum(word));
                }),
                ifPresent<common::spectrumUnits>([&](const std::string& word) {
                    measurements.setSpectrumUnits(measurements.getSpectrumUnitsEnum(word));
                }),
                ifPresent<common::measurementChannelRBW>(measurements, &Measurements::setRBW),
                ifPresent<common::measurementChannelFrequencyOffset>(measurements, &Measurements::setFrequencyOffset),
                ifPresent<options::distortionType>(
                    [&](const std::string& word) { measurements.setType(measurements.getTypeEnum(word)); }),
                ifPresent<options::numHarmonics>(
                    [&](int count) { measurements.setNumHarmonics(static_cast<unsigned long>(std::max(0, count))); }),
                ifPresent<common::twoSidedSpectrum>(measurements, &Measurements::setTwoSidedSpectrum),
                ifPresent<options::distortionMeasurementsEnabled>(active));
    trace.readOptions(list);
}

Poco::SharedPtr<Poco::JSON::Object> DistortionMeasurementsFilter::packageImpl(const std::string& clientID) {
    const auto record = board::read<distortionStruct>(findBoard(clientID), distortion);
    const auto tonesText = [&record](const std::vector<double>& tones) {
        return arrayText(tones.data(), std::min<std::size_t>(record.numHarmonics, tones.size()));
    };
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("amplitude", tonesText(record.harmonicPower));
    package->set("frequency", tonesText(record.harmonicFrequency));
    package->set("numHarmonics", record.numHarmonics);
    package->set("THD", numberText(record.thd));
    package->set("THDPercent", numberText(record.thdPercent));
    package->set("SNR", numberText(record.snr));
    package->set("SINAD", numberText(record.sinad));
    package->set("SFDR", numberText(record.sfdr));
    package->set("TOI", numberText(record.toi));
    return package;
}

}  // namespace dspwavedecks
