#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "SpectrumMeasurementsEnum.h"
#include "phaseNoiseStruct.h"

namespace dspwavedecks {

/// Single-sideband phase noise of the carrier in every channel of every signal.
///
/// The carrier is the strongest bin of the non-negative frequencies, the lowest bin left out. The curve runs over the
/// bins above it, from half the first spot offset to twice the last one:
///   phase noise at offset d = density at (carrier + d) - level of the carrier        dBc/Hz
///   level of the carrier    = density of its bin + 10 log10(rbw)
/// It includes amplitude noise and everything else that stands beside the carrier: spurious tones, too, and what the
/// resolution bandwidth and the window let through near it.
///
/// A pass is one call of computePhaseNoise for each signal, in order.
class PhaseNoise {
public:
    using SpectrumType = SpectrumMeasurementsEnum::SpectrumType;
    using SpectrumUnits = SpectrumMeasurementsEnum::SpectrumUnits;

    void setSpectrumType(const SpectrumType& value) { spectrumType = value; }
    /// Stored for its name's sake: spectra are taken to be levels in dB.
    void setSpectrumUnits(const SpectrumUnits& value) { spectrumUnits = value; }
    /// Resolution bandwidth, Hz.
    void setRBW(const double& value) { rbw = value; }
    /// Added to every frequency, Hz.
    void setFrequencyOffset(const double& value) { frequencyOffset = value; }
    /// Stored only: negative frequencies are always left out.
    void setTwoSidedSpectrum(const bool& value) { twoSidedSpectrum = value; }
    /// Offsets from the carrier to read the curve at, Hz, ascending. Without any there is no curve.
    void setPhaseNoiseFrequencyOffset(const std::vector<double>& value) { phaseNoiseFrequencyOffset = value; }

    /// The values of the option words; an unknown word throws std::out_of_range.
    SpectrumType getSpectrumTypeEnum(const std::string& key) const { return enumAt(spectrumTypeKeys, key); }
    SpectrumUnits getSpectrumUnitsEnum(const std::string& key) const { return enumAt(spectrumUnitsKeys, key); }

    /// Shape of a pass: signals, channels of each (those of complex signals counted once), and points of a block of
    /// each signal's frame. A signal that is not there is passed over.
    void setNumSignals(const unsigned long& n);
    void setNumChannels(const unsigned long& signal, const unsigned long& n);
    void setFrameSize(const unsigned long& signal, const unsigned long& n);

    /// Measures all channels of a signal. After the last signal the limits over all signals are in the result.
    /// freq      [frameSize] Hz, ascending
    /// spectrum  [(1 + numChannels) * frameSize] dB, the frame: its first block is the grid
    /// The result stands until the next call. A channel whose carrier is its last bin keeps its earlier curve.
    const phaseNoiseStruct& computePhaseNoise(const unsigned long& signal, const double* freq, const double* spectrum);

private:
    std::size_t findCarrier(std::size_t channel) const;
    void measureChannel(std::size_t signal, std::size_t channel);
    void widenLimits(const std::vector<double>& offsets, const std::vector<double>& levels, std::size_t numPoints);
    void completePass();

    const EnumKeys<SpectrumType> spectrumTypeKeys = SpectrumMeasurementsEnum::spectrumTypeKeys();
    const EnumKeys<SpectrumUnits> spectrumUnitsKeys = SpectrumMeasurementsEnum::spectrumUnitsKeys();

    // options
    SpectrumType spectrumType = SpectrumType::power;
    SpectrumUnits spectrumUnits = SpectrumUnits::dbm;
    double rbw = 9.7656;           // Hz
    double frequencyOffset = 0.0;  // Hz
    bool twoSidedSpectrum = true;
    std::vector<double> phaseNoiseFrequencyOffset;  // Hz
    unsigned long numSignals = 0;
    std::vector<unsigned long> numChannels;  // [signal]
    std::vector<unsigned long> frameSize;    // [signal]

    // state
    phaseNoiseStruct results;
    // over the signals of the pass under way
    std::vector<double> frequencyOffsetLimits = phaseNoiseStruct().frequencyOffsetLimits;  // Hz
    std::vector<double> phaseNoiseLimits = phaseNoiseStruct().phaseNoiseLimits;            // dBc/Hz
    unsigned long maxNumPoints = 0;

    // scratch
    std::vector<double> frequencies;  // [n] Hz, one-sided
    std::vector<double> psd;          // [channels of the signal * n] dB/Hz
};

}  // namespace dspwavedecks
