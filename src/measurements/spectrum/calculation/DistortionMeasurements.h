#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DistortionMeasurementEnum.h"
#include "HillClearer.h"
#include "SpectrumMeasurementsEnum.h"
#include "distortionStruct.h"

namespace dspwavedecks {

/// Harmonic distortion of a tone, or third-order intermodulation of two, from the spectrum of one channel.
///
/// Each tone that is found is wiped, with the hill around it, from a working copy of the density; what remains counts
/// as noise, and the wiped bins are filled in at the median of what remains.
class DistortionMeasurements {
public:
    using Type = DistortionMeasurementEnum::Type;
    using SpectrumType = SpectrumMeasurementsEnum::SpectrumType;
    using SpectrumUnits = SpectrumMeasurementsEnum::SpectrumUnits;

    void setSpectrumType(const SpectrumType& value) { spectrumType = value; }
    void setSpectrumUnits(const SpectrumUnits& value) { spectrumUnits = value; }
    /// Resolution bandwidth, Hz: half the width over which a tone's frequency is weighed, and the unit of its power.
    void setRBW(const double& value) { rbw = value; }
    /// Added to every frequency, Hz.
    void setFrequencyOffset(const double& value) { frequencyOffset = value; }
    void setType(const Type& value) { type = value; }
    /// Tones of the harmonic measurement, the fundamental included.
    void setNumHarmonics(const unsigned long& value) { numHarmonics = value; }
    /// Whether the spectrum shown is two-sided; the bin at 0 Hz of a one-sided one counts double.
    void setTwoSidedSpectrum(const bool& value) { twoSidedSpectrum = value; }

    /// The values of the option words; an unknown word throws std::out_of_range.
    Type getTypeEnum(const std::string& key) const { return enumAt(typeKeys, key); }
    SpectrumType getSpectrumTypeEnum(const std::string& key) const { return enumAt(spectrumTypeKeys, key); }
    SpectrumUnits getSpectrumUnitsEnum(const std::string& key) const { return enumAt(spectrumUnitsKeys, key); }

    /// Measures one spectrum, of which the non-negative frequencies count.
    /// freq      [n] Hz, n = range[1] - range[0], ascending and uniform
    /// spectrum  a frame or trace, of which [range[0], range[1]) is the spectrum in its type and unit
    /// The result stands until the next measurement. With fewer than two bins, or a resolution
    /// bandwidth that is no number, every figure reads NaN.
    const distortionStruct& computeDistortion(const double* freq, const double* spectrum,
                                              const std::vector<unsigned long>& range);

    /// The two measurements, on the working density. With P1 the power of the fundamental, H that of the harmonics, N
    /// that of the noise and S the strongest component other than the fundamental, all in linear units:
    ///   THD = H / P1, SNR = P1 / N, SINAD = P1 / (H + N), SFDR = P1 / S      10 log10 of each
    ///   TOI = ((P[0] + (P[1] - P[2]) / 2) + (P[1] + (P[0] - P[3]) / 2)) / 2  of the levels of tones and products
    void computeHarmonicDistortion();
    void computeImodDistortion();

    /// Wipes the hill about a bin of the working density; returns its number of bins, 0 for a bin outside.
    int clearLocalPeak(const int& index);

    /// The first largest bin of the working density. Leaves the power-weighted mean frequency of the bins within one
    /// resolution bandwidth about it, bin 0 left out, as the fundamental frequency.
    int computeMaxFrequency();

private:
    bool isMeasurable() const;
    void markUnmeasurable();
    std::optional<std::size_t> findBin(double frequency) const;
    std::size_t strongestAbout(std::size_t index) const;
    void clearZeroFrequency(std::size_t index);
    double takeTone(std::size_t index, std::size_t entry);
    double binWidth() const { return frequencies[1] - frequencies[0]; }

    const EnumKeys<Type> typeKeys{{"harmonic", Type::harmonic}, {"intermodulation", Type::intermodulation}};
    const EnumKeys<SpectrumType> spectrumTypeKeys = SpectrumMeasurementsEnum::spectrumTypeKeys();
    const EnumKeys<SpectrumUnits> spectrumUnitsKeys = SpectrumMeasurementsEnum::spectrumUnitsKeys();

    // options
    Type type = Type::harmonic;
    SpectrumType spectrumType = SpectrumType::power;
    SpectrumUnits spectrumUnits = SpectrumUnits::dbm;
    unsigned long numHarmonics = 6;
    double rbw = 9.7656;           // Hz
    double frequencyOffset = 0.0;  // Hz
    bool twoSidedSpectrum = true;

    // state
    distortionStruct results;

    // scratch
    double fundamentalFrequency = 0.0;  // Hz, of the tone found last
    std::vector<double> psd;            // [n] power/Hz, one-sided; tones are wiped as they are found
    std::vector<double> frequencies;    // [n] Hz
    HillClearer hills;
    std::size_t numCleared = 0;  // bins of all hills so far
    std::vector<double> selection;
};

}  // namespace dspwavedecks
