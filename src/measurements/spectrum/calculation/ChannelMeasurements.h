#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "ChannelMeasurementEnum.h"
#include "SpectrumMeasurementsEnum.h"
#include "channelMeasurementsStruct.h"

namespace dspwavedecks {

/// Power of a channel with its occupied bandwidth, or with the power of neighbouring channels beside it.
///
/// Powers are sums over a power density, in which a bin counts by the part of it that lies inside the band:
///   P = df * (sum of psd[i..j]) - what the two end bins hold outside the band
/// A bin of width df reaches df/2 to either side of its frequency. The grid is used as it comes: ascending and uniform.
class ChannelMeasurements {
public:
    using Type = ChannelMeasurementEnum::Type;
    using FilterShape = ChannelMeasurementEnum::FilterShape;
    using SpectrumType = SpectrumMeasurementsEnum::SpectrumType;
    using SpectrumUnits = SpectrumMeasurementsEnum::SpectrumUnits;

    void setSpectrumType(const SpectrumType& value) { spectrumType = value; }
    void setSpectrumUnits(const SpectrumUnits& value) { spectrumUnits = value; }
    /// Resolution bandwidth of a power spectrum, Hz.
    void setRBW(const double& value) { rbw = value; }
    void setType(const Type& value) { type = value; }
    void setFilterShape(const FilterShape& value) { filterShape = value; }
    /// Edges of the channel, Hz.
    void setStartFrequency(const double& value) { startFrequency = value; }
    void setStopFrequency(const double& value) { stopFrequency = value; }
    /// Share of the channel's power that makes the occupied band, 0 .. 100.
    void setPercentOccupiedBW(const double& value) { percentOccupiedBW = value; }
    /// Width of each adjacent channel, Hz.
    void setAdjacentBW(const double& value) { adjacentBW = value; }
    /// Half-power half-width of the Gaussian filter over the channel's width, or roll-off of the root-raised cosine.
    void setFilterCoeff(const double& value) { filterCoeff = value; }
    void setNumOffsets(const unsigned long& value) { numOffsets = value; }
    /// Distances of the middles of the adjacent channels from that of the channel, Hz.
    void setACPROffsets(const std::vector<double>& value) { acprOffsets = value; }
    /// Added to every frequency, Hz.
    void setFrequencyOffset(const double& value) { frequencyOffset = value; }

    /// The values of the option words; an unknown word throws std::out_of_range.
    Type getTypeEnum(const std::string& key) const { return enumAt(typeKeys, key); }
    SpectrumType getSpectrumTypeEnum(const std::string& key) const { return enumAt(spectrumTypeKeys, key); }
    SpectrumUnits getSpectrumUnitsEnum(const std::string& key) const { return enumAt(spectrumUnitsKeys, key); }
    FilterShape getFilterShapeEnum(const std::string& key) const { return enumAt(filterShapeKeys, key); }

    /// Measures one spectrum.
    /// freq      [n] Hz, n = range[1] - range[0]
    /// spectrum  a frame or trace, of which [range[0], range[1]) is the spectrum in its type and unit
    /// The result stands until the next measurement.
    const channelMeasurementsStruct& computeChannelMeasurements(const double* freq, const double* spectrum,
                                                                const std::vector<unsigned long>& range);

    /// Occupied bandwidth of the working density, into the result.
    void computeOccupiedBW();

    /// Channel power and adjacent channel power ratios of the working density, into the result.
    void computeACPR();

    /// Power of a density between two edges in Hz; NaN if they are out of order or outside the working grid.
    double computeChannelPower(const std::vector<double>& density, const double& lowerEdge, const double& upperEdge);

    /// The same through the channel filter about the middle of the band. The filter's width is that of the main channel
    /// for adjacent bands too.
    double computeFilteredChannelPower(const std::vector<double>& density, const double& lowerEdge,
                                       const double& upperEdge);

    /// Frequency at which the cumulative power passes a level; NaN for none and for a negative level.
    double interpolateFrequency(const std::vector<double>& cumulative, const std::vector<double>& edges,
                                const double& level) const;

private:
    void takeDensity(const double* freq, const double* bins, std::size_t n);
    bool locateBand(std::size_t numBins, double lowerEdge, double upperEdge);
    void measureExcess(const std::vector<double>& density, double lowerEdge, double upperEdge);
    double accumulateBand();
    double bandPower(double sum) const { return binWidth * sum - lowerEdgeExcess - upperEdgeExcess; }

    /// Power responses of the channel filters, into the bins of the band that was located last. With W the width of the
    /// main channel and d the distance from the centre, a the coefficient:
    ///   Gaussian              exp(-2 x^2),  x = sqrt(ln 2 / 2) / a * d / W:  1/2 at d = a W
    ///   root-raised cosine    1 up to W/2 (1 - a), 0 from W/2 (1 + a), between them
    ///                         cos^2(pi / (4 a) * (2 d / W - (1 - a)))
    void gaussianFrequencyResponse(const double& centre);
    void rrcFrequencyResponse(const double& centre);
    std::size_t firstBin() const { return std::min(startIdx, stopIdx); }
    std::size_t lastBin() const { return std::max(startIdx, stopIdx); }

    const EnumKeys<Type> typeKeys{{"occupied-bandwidth", Type::occupiedBandwidth}, {"acpr", Type::acpr}};
    const EnumKeys<SpectrumType> spectrumTypeKeys = SpectrumMeasurementsEnum::spectrumTypeKeys();
    const EnumKeys<SpectrumUnits> spectrumUnitsKeys = SpectrumMeasurementsEnum::spectrumUnitsKeys();
    const EnumKeys<FilterShape> filterShapeKeys{
        {"none", FilterShape::none}, {"gaussian", FilterShape::gaussian}, {"rrc", FilterShape::rrc}};

    // options
    Type type = Type::occupiedBandwidth;
    SpectrumType spectrumType = SpectrumType::power;
    SpectrumUnits spectrumUnits = SpectrumUnits::dbm;
    FilterShape filterShape = FilterShape::none;
    double percentOccupiedBW = 99.0;
    double startFrequency = -1000.0;  // Hz
    double stopFrequency = 1000.0;    // Hz
    double adjacentBW = 1000.0;       // Hz
    double rbw = 9.7656;              // Hz
    double filterCoeff = 0.5;
    double frequencyOffset = 0.0;  // Hz
    unsigned long numOffsets = 2;
    std::vector<double> acprOffsets{2000.0, 3500.0};  // Hz

    // state
    channelMeasurementsStruct results;

    // scratch
    double binWidth = std::numeric_limits<double>::quiet_NaN();  // Hz
    std::vector<double> frequencies;                             // [n] Hz, of the bins that the bands reach
    std::vector<double> psd;                                     // [n] power/Hz
    std::vector<double> filteredPSD;  // [n] power/Hz, valid in the band that was located last
    std::vector<double> cumulative;   // [bins + 1] power up to each bin's upper edge
    std::vector<double> edges;        // [bins + 1] Hz
    std::size_t startIdx = 0;         // first and last bin of the band that was located last
    std::size_t stopIdx = 0;
    double lowerEdgeExcess = std::numeric_limits<double>::quiet_NaN();  // power of the end bins outside the band
    double upperEdgeExcess = std::numeric_limits<double>::quiet_NaN();
};

}  // namespace dspwavedecks
