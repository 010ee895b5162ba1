#include <algorithm>

#include "SpectrumEstimator.h"
#include "SpectrumMeasurementsUtils.h"

namespace dspwavedecks {

namespace {

namespace utils = SpectrumMeasurementsUtils;
using Units = SpectrumEstimatorEnum::SpectrumUnits;
using Values = std::vector<double>;
using Range = std::vector<unsigned long>;

/// Power to a display unit. Units without a level or a root take the power as it is.
void fromWatts(Units units, const Values& watts, Values& display, const Range& range, double fullScale) {
    switch (units) {
        case Units::dbw:
        case Units::dbwPerHz:
            utils::watts2dB(watts, display, range, 0.0);
            break;
        case Units::dbm:
        case Units::dbmPerHz:
            utils::watts2dB(watts, display, range, 30.0);
            break;
        case Units::dbfs:
        case Units::dbfsPerHz:
            utils::watts2dBFS(watts, display, range, fullScale);
            break;
        case Units::vrms:
            utils::watts2Vrms(watts, display, range);
            break;
        case Units::dbv:
            utils::watts2dBV(watts, display, range);
            break;
        case Units::dbuv:
            utils::watts2dBuV(watts, display, range);
            break;
        default:
            break;
    }
}

bool isPerHertzOrFullScale(Units units) {
    return units == Units::dbwPerHz || units == Units::dbmPerHz || units == Units::dbfs || units == Units::dbfsPerHz;
}

}  // namespace

bool SpectrumEstimator::isWatts() const {
    return spectrumUnits == SpectrumUnits::watts || spectrumUnits == SpectrumUnits::wattsPerHz;
}

bool SpectrumEstimator::isdBScale() const {
    return spectrumUnits == SpectrumUnits::dbw || spectrumUnits == SpectrumUnits::dbwPerHz || getdBmFactor() != 0.0;
}

bool SpectrumEstimator::isdBFS() const {
    return spectrumUnits == SpectrumUnits::dbfs || spectrumUnits == SpectrumUnits::dbfsPerHz;
}

double SpectrumEstimator::getdBmFactor() const {
    return spectrumUnits == SpectrumUnits::dbm || spectrumUnits == SpectrumUnits::dbmPerHz ? 30.0 : 0.0;
}

double SpectrumEstimator::getFullScale(const int& signal) const {
    if (!autoFullScale) {
        return fullScale;
    }
    const bool known = signal >= 0 && static_cast<std::size_t>(signal) < inputRange.size();
    return known ? inputRange[static_cast<std::size_t>(signal)] : 1.0;
}

double SpectrumEstimator::getReferenceLoad() const {
    return spectrumType == SpectrumType::rms || isdBFS() ? 1.0 : referenceLoad;
}

bool SpectrumEstimator::isFloatingPointInput(const int& signal) const {
    const std::string type = getInputDataType(signal);
    return type == "double" || type == "single" || type == "half";
}

double SpectrumEstimator::getSpectrumScaleValue() const {
    const bool density = spectrumType == SpectrumType::powerDensity;
    if (isPlainFilterbank()) {
        return 1.0 / (getReferenceLoad() * (density ? transientRBW : 1.0));
    }
    const double power = windowPower * actualSampleRate * getReferenceLoad();
    return density ? 1.0 / power : transientRBW / power;
}

void SpectrumEstimator::scaleSpectrum(std::vector<double>& out, const int& signal, const std::size_t& channels) {
    if (channels + outputFrequencyVector == 0) {
        return;
    }
    conversionRange.assign({out.size() / (channels + outputFrequencyVector), out.size()});
    fromWatts(spectrumUnits, out, out, conversionRange, getFullScale(signal));
}

void SpectrumEstimator::scaleMaxMinHoldTraceSpectrum(const int& signal, const std::size_t& channels) {
    if (propertyChanged || spectrumUnits == SpectrumUnits::automatic || spectrumUnits == SpectrumUnits::none) {
        return;
    }
    const std::size_t first = getChannelBufferIdx(signal, 0) * spectrumLength;
    conversionRange.assign({first, first + channels * spectrumLength});
    const auto convert = [&](const Values& watts, Values& display) {
        if (isWatts()) {
            std::copy_n(watts.data() + first, channels * spectrumLength, display.data() + first);
        }
        fromWatts(spectrumUnits, watts, display, conversionRange, getFullScale(signal));
    };
    if (plotMaxHoldTrace) {
        convert(maxHoldPSD, metaData.maxHoldTrace);
    }
    if (plotMinHoldTrace) {
        convert(minHoldPSD, metaData.minHoldTrace);
    }
}

bool SpectrumEstimator::isSameUnitInAndOut() const {
    return inputUnits == SpectrumUnits::none || inputUnits == spectrumUnits ||
           spectrumUnits == SpectrumUnits::automatic;
}

bool SpectrumEstimator::isFrequencyInputDomainScalingRequired() const {
    return isSameUnitInAndOut() && (spectrumType == SpectrumType::rms || isdBFS() || referenceLoad == 1.0);
}

/// Spectra as input: to watts at the load, and from there to the display unit. Units per hertz and below full scale
/// are not converted, in either direction.
void SpectrumEstimator::scaleFrequencyDomainSpectrum(std::vector<double>& out) {
    if (isFrequencyInputDomainScalingRequired()) {
        return;
    }
    const bool unitLoad = isdBFS() || (!isSameUnitInAndOut() && spectrumType == SpectrumType::rms);
    const double load = unitLoad ? 1.0 : referenceLoad;
    conversionRange.assign({outputFrequencyVector * spectrumLength, out.size()});
    switch (inputUnits) {
        case SpectrumUnits::dbw:
            utils::dB2Watts(out, out, conversionRange, 0.0);
            break;
        case SpectrumUnits::dbm:
            utils::dB2Watts(out, out, conversionRange, 30.0);
            break;
        case SpectrumUnits::vrms:
            utils::vrms2Watts(out, out, conversionRange, load);
            break;
        case SpectrumUnits::dbv:
            utils::dBV2Watts(out, out, conversionRange, load);
            break;
        case SpectrumUnits::dbuv:
            utils::dBuV2Watts(out, out, conversionRange, load);
            break;
        default:
            break;
    }
    if (!isPerHertzOrFullScale(spectrumUnits)) {
        fromWatts(spectrumUnits, out, out, conversionRange, 1.0);
    }
}

}  // namespace dspwavedecks
