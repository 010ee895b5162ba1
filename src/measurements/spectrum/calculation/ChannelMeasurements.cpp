#include "ChannelMeasurements.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "InterpolationAtLevel.h"
#include "SpectrumMeasurementsUtils.h"

namespace dspwavedecks {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// sqrt(ln 2 / 2): exp(-2 x^2) is 1/2 there.
constexpr double halfPowerOfGaussian = 0.5887050112577373;

double toLevel(double power) {
    return 10.0 * std::log10(power);
}

}  // namespace

const channelMeasurementsStruct& ChannelMeasurements::computeChannelMeasurements(
    const double* freq, const double* spectrum, const std::vector<unsigned long>& range) {
    // A spectrum whose resolution bandwidth is no number is not measured.
    const std::size_t n = std::isfinite(rbw) && range[1] > range[0] ? range[1] - range[0] : 0;
    takeDensity(freq, spectrum + range[0], n);
    if (type == Type::occupiedBandwidth) {
        computeOccupiedBW();
    } else {
        computeACPR();
    }
    results.type = type;
    results.isNewDataReady = true;
    return results;
}

/// Grid and density of the bins that a band can reach, and two more to either side: turning levels into powers costs
/// more than all else.
void ChannelMeasurements::takeDensity(const double* freq, const double* bins, std::size_t n) {
    const double centre = (startFrequency + stopFrequency) / 2.0;
    double reach = 0.0;
    if (type == Type::acpr) {
        for (std::size_t i = 0; i < std::min<std::size_t>(numOffsets, acprOffsets.size()); ++i) {
            reach = std::max(reach, std::abs(acprOffsets[i]) + std::abs(adjacentBW) / 2.0);
        }
    }
    const double lowest = std::min(startFrequency, centre - reach);
    const double highest = std::max(stopFrequency, centre + reach);
    const double* const lower = std::partition_point(
        freq, freq + n, [=, this](double frequency) { return frequency + frequencyOffset < lowest; });
    const double* const upper = std::partition_point(
        lower, freq + n, [=, this](double frequency) { return frequency + frequencyOffset <= highest; });
    const double* const begin = lower - std::min<std::ptrdiff_t>(lower - freq, 2);
    const double* const end = upper + std::min<std::ptrdiff_t>(freq + n - upper, 2);

    binWidth = n < 2 ? nan : (freq[1] + frequencyOffset) - (freq[0] + frequencyOffset);
    frequencies.assign(begin, end);
    if (frequencyOffset != 0.0) {
        for (double& frequency : frequencies) {
            frequency += frequencyOffset;
        }
    }
    psd.assign(bins + (begin - freq), bins + (end - freq));
    SpectrumMeasurementsUtils::computePSDInWattsFromSpectrum(psd, rbw, spectrumType, spectrumUnits);
}

/// The bins that hold the two edges. False, and both bins 0, for edges out of order or outside the grid, whose end bins
/// reach half a bin further than their frequencies.
bool ChannelMeasurements::locateBand(std::size_t numBins, double lowerEdge, double upperEdge) {
    startIdx = 0;
    stopIdx = 0;
    if (numBins < 2) {
        return false;
    }
    const double halfBin = binWidth / 2.0;
    if (!(lowerEdge <= upperEdge) || lowerEdge < frequencies[0] - halfBin ||
        upperEdge > frequencies[numBins - 1] + halfBin) {
        return false;
    }
    const double* begin = frequencies.data();
    const double* end = begin + numBins;
    const double* pastStart =
        std::partition_point(begin, end, [=](double frequency) { return frequency - halfBin <= lowerEdge; });
    const double* stop =
        std::partition_point(begin, end, [=](double frequency) { return !(upperEdge <= frequency + halfBin); });
    if (pastStart == begin || stop == end) {
        return false;  // a grid that is no grid
    }
    startIdx = static_cast<std::size_t>(pastStart - begin) - 1;
    stopIdx = static_cast<std::size_t>(stop - begin);
    return true;
}

double ChannelMeasurements::computeChannelPower(const std::vector<double>& density, const double& lowerEdge,
                                                const double& upperEdge) {
    if (!locateBand(std::min(density.size(), frequencies.size()), lowerEdge, upperEdge)) {
        return nan;
    }
    measureExcess(density, lowerEdge, upperEdge);
    double sum = 0.0;
    for (std::size_t i = startIdx; i <= stopIdx; ++i) {
        sum += density[i];
    }
    return bandPower(sum);
}

/// Powers that the two end bins of the located band hold outside of it.
void ChannelMeasurements::measureExcess(const std::vector<double>& density, double lowerEdge, double upperEdge) {
    const double halfBin = binWidth / 2.0;
    lowerEdgeExcess = density[startIdx] * (lowerEdge - (frequencies[startIdx] - halfBin));
    upperEdgeExcess = density[stopIdx] * (frequencies[stopIdx] + halfBin - upperEdge);
}

void ChannelMeasurements::computeOccupiedBW() {
    double power = nan;
    double lowerFrequency = nan;
    double upperFrequency = nan;
    // A band of no width on a bin edge starts in the bin above it and stops in the one below: one edge, no bin.
    if (locateBand(psd.size(), startFrequency, stopFrequency) && startIdx < stopIdx + 2) {
        measureExcess(psd, startFrequency, stopFrequency);
        power = bandPower(accumulateBand());
        if (percentOccupiedBW <= 100.0) {
            // What lies outside the occupied band is split evenly over its two sides.
            lowerFrequency = interpolateFrequency(cumulative, edges, power * ((100.0 - percentOccupiedBW) / 200.0));
            upperFrequency = interpolateFrequency(cumulative, edges, power * ((percentOccupiedBW + 100.0) / 200.0));
        }
    }
    results.channelPower = toLevel(power);
    results.startFrequency = lowerFrequency;
    results.stopFrequency = upperFrequency;
    results.occupiedBW = upperFrequency - lowerFrequency;
    results.frequencyError = (lowerFrequency + upperFrequency) / 2.0 - (startFrequency + stopFrequency) / 2.0;
}

/// Power from the lower edge of the located band up to the upper edge of each of its bins, beside those edges. Returns
/// the sum of the densities.
double ChannelMeasurements::accumulateBand() {
    const std::size_t numBins = stopIdx + 1 - startIdx;
    cumulative.resize(numBins + 1);
    edges.resize(numBins + 1);
    cumulative[0] = -lowerEdgeExcess;
    edges[0] = frequencies[startIdx] - binWidth / 2.0;
    double sum = 0.0;
    for (std::size_t k = 0; k < numBins; ++k) {
        sum += psd[startIdx + k];
        cumulative[k + 1] = binWidth * sum - lowerEdgeExcess;
        edges[k + 1] = frequencies[startIdx + k] + binWidth / 2.0;
    }
    return sum;
}

double ChannelMeasurements::interpolateFrequency(const std::vector<double>& cumulative,
                                                 const std::vector<double>& edges, const double& level) const {
    return level < 0.0 ? nan : interpolateAtLevel(cumulative.data(), edges.data(), cumulative.size(), level);
}

void ChannelMeasurements::computeACPR() {
    const double power = computeFilteredChannelPower(psd, startFrequency, stopFrequency);
    const double centre = (startFrequency + stopFrequency) / 2.0;
    const double halfWidth = adjacentBW / 2.0;
    // An offset that the list doesn't hold is no channel and reads NaN, up to a number beyond which the count is wrong:
    // it must not ask for the memory of as many results.
    constexpr std::size_t mostWithoutOffset = 1000;
    results.numOffsets = std::min<std::size_t>(numOffsets, std::max(acprOffsets.size(), mostWithoutOffset));
    results.acprLower.assign(results.numOffsets, nan);
    results.acprUpper.assign(results.numOffsets, nan);
    for (std::size_t i = 0; i < std::min<std::size_t>(results.numOffsets, acprOffsets.size()); ++i) {
        const double offset = acprOffsets[i];
        const double lower = centre - offset;
        const double upper = centre + offset;
        results.acprLower[i] = toLevel(computeFilteredChannelPower(psd, lower - halfWidth, lower + halfWidth) / power);
        results.acprUpper[i] = toLevel(computeFilteredChannelPower(psd, upper - halfWidth, upper + halfWidth) / power);
    }
    results.channelPower = toLevel(power);
}

double ChannelMeasurements::computeFilteredChannelPower(const std::vector<double>& density, const double& lowerEdge,
                                                        const double& upperEdge) {
    if (filterShape == FilterShape::none || !locateBand(density.size(), lowerEdge, upperEdge)) {
        return computeChannelPower(density, lowerEdge, upperEdge);
    }
    const double centre = (lowerEdge + upperEdge) / 2.0;
    filteredPSD.resize(frequencies.size());
    if (filterShape == FilterShape::rrc) {
        rrcFrequencyResponse(centre);
    } else {
        gaussianFrequencyResponse(centre);
    }
    for (std::size_t i = firstBin(); i <= lastBin(); ++i) {
        filteredPSD[i] *= density[i];
    }
    return computeChannelPower(filteredPSD, lowerEdge, upperEdge);
}

void ChannelMeasurements::gaussianFrequencyResponse(const double& centre) {
    const double width = stopFrequency - startFrequency;
    for (std::size_t i = firstBin(); i <= lastBin(); ++i) {
        const double x = ((halfPowerOfGaussian / filterCoeff) * (frequencies[i] - centre)) / width;
        filteredPSD[i] = std::exp(-2.0 * x * x);
    }
}

void ChannelMeasurements::rrcFrequencyResponse(const double& centre) {
    const double width = stopFrequency - startFrequency;
    const double passEdge = (width / 2.0) * (1.0 - filterCoeff);
    const double stopEdge = (width / 2.0) * (1.0 + filterCoeff);
    for (std::size_t i = firstBin(); i <= lastBin(); ++i) {
        const double distance = std::abs(frequencies[i] - centre);
        double response = 1.0;
        if (distance > passEdge && distance < stopEdge) {
            const double amplitude =
                std::cos((std::numbers::pi / (4.0 * filterCoeff)) * (2.0 * distance / width - (1.0 - filterCoeff)));
            response = amplitude * amplitude;
        } else if (distance > passEdge && distance >= stopEdge) {
            // At the edge of a filter without roll-off, where the two edges are one, the response is still 1.
            response = 0.0;
        }
        filteredPSD[i] = response;
    }
}

}  // namespace dspwavedecks
