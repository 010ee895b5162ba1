#include "PhaseNoiseFilter.h"

#include <algorithm>
#include <limits>

#include "BaseOptions.h"
#include "Board.h"
#include "JsonArrays.h"
#include "OptionTable.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

namespace {

Poco::JSON::Array::Ptr numbers(const double* values, std::size_t count) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    JsonArrayWriter(*array).append(values, count);
    return array;
}

/// The first values of a list, and NaN for those that it lacks.
Poco::JSON::Array::Ptr numbersUpTo(std::vector<double> values, std::size_t count) {
    values.resize(count, std::numeric_limits<double>::quiet_NaN());
    return numbers(values.data(), count);
}

/// The arrays of one signal, an element for each channel.
struct CurveArrays {
    Poco::JSON::Array::Ptr phaseNoise = new Poco::JSON::Array;
    Poco::JSON::Array::Ptr nanPlaces = new Poco::JSON::Array;
    Poco::JSON::Array::Ptr frequencyOffset = new Poco::JSON::Array;
    Poco::JSON::Array::Ptr spotPhaseNoise = new Poco::JSON::Array;

    void add(const std::vector<double>& levels, const std::vector<double>& offsets, std::size_t numPoints,
             const Poco::JSON::Array::Ptr& spots) {
        Poco::JSON::Array::Ptr curve = new Poco::JSON::Array;
        Poco::JSON::Array::Ptr places = new Poco::JSON::Array;
        std::vector<int> replaced;
        JsonArrayWriter(*curve).appendFinite(levels.data(), numPoints, 0.0, replaced);
        JsonArrayWriter(*places).append(replaced);
        phaseNoise->add(curve);
        nanPlaces->add(places);
        frequencyOffset->add(numbers(offsets.data(), numPoints));
        spotPhaseNoise->add(spots);
    }
};

/// Whether the record has a curve, perhaps without points, for a channel.
bool hasCurve(const phaseNoiseStruct& record, std::size_t signal, std::size_t channel) {
    const auto holds = [=](const auto& table) { return signal < table.size() && channel < table[signal].size(); };
    return holds(record.numPoints) && holds(record.phaseNoise) && holds(record.frequencyOffset) &&
           holds(record.spotPhaseNoise);
}

}  // namespace

PhaseNoiseFilter::PhaseNoiseFilter() : phaseNoise_(std::make_unique<PhaseNoise>()) {}

PhaseNoiseFilter::~PhaseNoiseFilter() = default;

void PhaseNoiseFilter::setPropertiesOnSetup(const PropertyList& list) {
    readHostFacts(list);
    readOptions(list, required<catalogue::base::numSignals>(numSignals));
    setPropertiesImpl(list);
    phaseNoise_->setNumSignals(static_cast<unsigned long>(std::max(0, numSignals)));
    for (int signal = 0; signal < numSignals; ++signal) {
        phaseNoise_->setNumChannels(static_cast<unsigned long>(signal), getNumSpectra(signal));
    }
}

void PhaseNoiseFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal < 0) {
        return;
    }
    auto& settings = getBoard();
    if (const auto rbw = getPublishedRBW()) {
        phaseNoise_->setRBW(*rbw);
    }
    const auto index = static_cast<unsigned long>(signal);
    phaseNoise_->setNumChannels(index, getNumSpectra(signal));
    phaseNoise_->setFrameSize(index, getLayout(signal).getBlockLength());
    board::write(settings, phaseNoise, phaseNoise_->computePhaseNoise(index, data, data));
}

void PhaseNoiseFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<phaseNoiseStruct>(getBoard(), phaseNoise);
    namespace options = catalogue::phaseNoise;
    namespace common = catalogue::spectrumMeasurement;
    auto& measurement = *phaseNoise_;
    readOptions(list,  //
                ifPresent<options::phaseNoiseEnabled>(active),
                ifPresent<options::phaseNoiseFrequencyOffset>(measurement, &PhaseNoise::setPhaseNoiseFrequencyOffset),
                ifPresent<common::spectrumType>([&](const std::string& word) {
                    measurement.setSpectrumType(measurement.getSpectrumTypeEnum(word));
                }),
                ifPresent<common::spectrumUnits>([&](const std::string& word) {
                    measurement.setSpectrumUnits(measurement.getSpectrumUnitsEnum(word));
                }),
                ifPresent<common::measurementChannelRBW>(measurement, &PhaseNoise::setRBW),
                ifPresent<common::measurementChannelFrequencyOffset>(measurement, &PhaseNoise::setFrequencyOffset),
                ifPresent<common::twoSidedSpectrum>(measurement, &PhaseNoise::setTwoSidedSpectrum));
    trace.readOptions(list);
}

Poco::SharedPtr<Poco::JSON::Object> PhaseNoiseFilter::packageImpl(const std::string& clientID, const int& signal,
                                                                  const int& numChannels) {
    const auto& settings = findBoard(clientID);
    static const phaseNoiseStruct nothing;
    const auto* const stored = board::find<phaseNoiseStruct>(settings, phaseNoise);
    const phaseNoiseStruct& record = stored != nullptr ? *stored : nothing;
    const std::size_t numSpots = record.numSpotFrequencyOffsets;
    CurveArrays curves;
    const auto s = static_cast<std::size_t>(signal);
    for (std::size_t c = 0; c < static_cast<std::size_t>(std::max(0, numChannels)); ++c) {
        if (!hasCurve(record, s, c)) {
            curves.add({}, {}, 0, numbers(nullptr, 0));
            continue;
        }
        const std::vector<double>& levels = record.phaseNoise[s][c];
        const std::vector<double>& offsets = record.frequencyOffset[s][c];
        const std::size_t numPoints = std::min<std::size_t>({record.numPoints[s][c], levels.size(), offsets.size()});
        curves.add(levels, offsets, numPoints, numbersUpTo(record.spotPhaseNoise[s][c], numPoints == 0 ? 0 : numSpots));
    }
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("phaseNoise", curves.phaseNoise);
    package->set("phaseNoiseNaNIdx", curves.nanPlaces);
    package->set("frequencyOffset", curves.frequencyOffset);
    package->set("spotFrequencyOffset", numbersUpTo(record.spotFrequencyOffset, numSpots));
    package->set("spotPhaseNoise", curves.spotPhaseNoise);
    package->set("frequencyOffsetLimits", numbersUpTo(record.frequencyOffsetLimits, 2));
    package->set("phaseNoiseLimits", numbersUpTo(record.phaseNoiseLimits, 2));
    package->set("numSpotFrequencyOffsets", record.numSpotFrequencyOffsets);
    return package;
}

bool PhaseNoiseFilter::isDataReady(const std::string& clientID) {
    const auto* const record = board::find<phaseNoiseStruct>(findBoard(clientID), phaseNoise);
    return record != nullptr && record->isNewDataReady;
}

}  // namespace dspwavedecks
