#include "ChannelMeasurementsFilter.h"

#include <algorithm>

#include "Board.h"
#include "JsonArrays.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

ChannelMeasurementsFilter::ChannelMeasurementsFilter() : channelMeasurements(std::make_unique<ChannelMeasurements>()) {}

ChannelMeasurementsFilter::~ChannelMeasurementsFilter() = default;

void ChannelMeasurementsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    auto& settings = getBoard();
    if (const auto rbw = getPublishedRBW()) {
        channelMeasurements->setRBW(*rbw);
    }
    const MeasuredSpectrum spectrum = findMeasuredSpectrum(data, signal);
    board::write(settings, channel,
                 channelMeasurements->computeChannelMeasurements(spectrum.frequencies, spectrum.bins, spectrum.range));
    updateFilterSignalAndChannel();
}

void ChannelMeasurementsFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<channelMeasurementsStruct>(getBoard(), channel);
    namespace options = catalogue::channelMeasurements;
    namespace common = catalogue::spectrumMeasurement;
    using Measurements = ChannelMeasurements;
    auto& measurements = *channelMeasurements;
    readOptions(list, ifPresent<options::channelMeasurementsType>([&](const std::string& word) {
                    measurements.setType(measurements.getTypeEnum(word));
                }),
                ifPresent<options::channelMeasurementsEnabled>(active),
                ifPresent<common::spectrumType>([&](const std::string& word) {
                    measurements.setSpectrumType(measurements.getSpectrumTypeEnum(word));
                }),
                ifPresent<common::spectrumUnits>([&](const std::string& word) {
                    measurements.setSpectrumUnits(measurements.getSpectrumUnitsEnum(word));
                }),
                ifPresent<common::measurementChannelRBW>(measurements, &Measurements::setRBW),
                ifPresent<options::measurementChannelStartFrequency>(measurements, &Measurements::setStartFrequency),
                ifPresent<options::measurementChannelStopFrequency>(measurements, &Measurements::setStopFrequency),
                ifPresent<common::measurementChannelFrequencyOffset>(measurements, &Measurements::setFrequencyOffset),
                ifPresent<options::percentOccupiedBW>(measurements, &Measurements::setPercentOccupiedBW),
                ifPresent<options::numOffsets>(
                    [&](int count) { measurements.setNumOffsets(static_cast<unsigned long>(std::max(0, count))); }),
                ifPresent<options::adjacentBW>(measurements, &Measurements::setAdjacentBW),
                ifPresent<options::filterShape>([&](const std::string& word) {
                    measurements.setFilterShape(measurements.getFilterShapeEnum(word));
                }),
                ifPresent<options::filterCoeff>(measurements, &Measurements::setFilterCoeff),
                ifPresent<options::acprOffsets>(measurements, &Measurements::setACPROffsets));
    trace.readOptions(list);
}

Poco::SharedPtr<Poco::JSON::Object> ChannelMeasurementsFilter::packageImpl(const std::string& clientID) {
    const auto record = board::read<channelMeasurementsStruct>(findBoard(clientID), channel);
    const auto ratiosText = [&record](const std::vector<double>& ratios) {
        return arrayText(ratios.data(), std::min<std::size_t>(record.numOffsets, ratios.size()));
    };
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("channelPower", numberText(record.channelPower));
    package->set("occupiedBW", numberText(record.occupiedBW));
    package->set("startFrequency", numberText(record.startFrequency));
    package->set("stopFrequency", numberText(record.stopFrequency));
    package->set("frequencyError", numberText(record.frequencyError));
    package->set("acprLower", ratiosText(record.acprLower));
    package->set("acprUpper", ratiosText(record.acprUpper));
    return package;
}

}  // namespace dspwavedecks
