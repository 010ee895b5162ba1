#pragma once

#include <vector>

#include "SpectrumMeasurementsEnum.h"

namespace dspwavedecks {

/// Conversions between displayed spectra and power, and the cut to non-negative frequencies. Stateless; zeros, negative
/// numbers and NaN go through the arithmetic as it stands.
///
/// A bin range is two indices, the first bin and one past the last.
namespace SpectrumMeasurementsUtils {

using SpectrumType = SpectrumMeasurementsEnum::SpectrumType;
using SpectrumUnits = SpectrumMeasurementsEnum::SpectrumUnits;

/// One channel without its negative frequencies.
/// freq         [n] Hz, n = range[1] - range[0], ascending
/// spectrum     a whole frame, of which [range[0], range[1]) is the channel
/// outFreq      [n - s] Hz, freq + frequencyOffset from the first bin s on at which that sum is not negative
/// outSpectrum  [n - s] the bins that belong to outFreq
/// A grid that begins at a non-negative frequency is taken whole; one that has none leaves both outputs empty.
void computeOneSidedFrequencyAndSpectrumInRange(const double* freq, const double* spectrum,
                                                const std::vector<unsigned long>& range, std::vector<double>& outFreq,
                                                std::vector<double>& outSpectrum, const double& frequencyOffset);

/// All channels of a frame without their negative frequencies.
/// freq         [numFrequencies] Hz, ascending
/// spectrum     [(1 + numChannels) * numFrequencies] the frame: its first block is the grid, channels follow
/// outFreq      [m] Hz, as for one channel
/// outSpectrum  [numChannels * m] the channels one after the other
void computeOneSidedFrequencyAndSpectrum(const double* freq, const double* spectrum,
                                         const unsigned long& numFrequencies, const unsigned long& numChannels,
                                         std::vector<double>& outFreq, std::vector<double>& outSpectrum,
                                         const double& frequencyOffset);

/// Level in dB to density in dB/Hz, in place:  x - 10 log10(rbw)  for a power spectrum; other types stay as they are.
/// x is taken to be in dB whatever the unit says.
void computePSDFromSpectrum(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                            const SpectrumUnits& units);

/// Displayed spectrum to linear density, in place and in this order:
///   every unit but watts and watts/hz (vrms included):  10^(x / 10)
///   rms:                                                 the square of the amplitude that dBuV, dBV or V stand for
///   power:                                               x / rbw
/// So an rms spectrum in a level unit is converted twice. That is meant: the figures are defined so, and
/// computeSpectrumFromPSD goes with it. References of the units (1 mW, full scale) are left in: only ratios matter.
void computePSDInWattsFromSpectrum(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                                   const SpectrumUnits& units);

/// True for every unit but watts and watts/hz: vrms counts as a level unit here, and is meant to.
bool isdBSpectrumUnits(const SpectrumUnits& units);

/// Power of a tone to the displayed form, in place and in this order:
///   every type but power:                        x / rbw
///   every unit but watts and watts/hz:           10 log10(x)
///   rms in vrms: sqrt(x); rms in dbv: 20 log10(sqrt(x)); rms in other units stays
/// This is not the inverse of computePSDInWattsFromSpectrum and is not meant to be: it is fed powers, not densities.
void computeSpectrumFromPSD(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                            const SpectrumUnits& units);

/// Conversions of single bins: dst[i] from src[i] for the bins of the range that both vectors have; other bins of dst
/// keep their values. src and dst may be one vector. d stands for the smallest positive double, which gives a bin of 0
/// a very low finite level in place of minus infinity.

/// offset + 10 log10(src + d): dBW for offset 0, dBm for offset 30.
void watts2dB(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset);

/// min(20 log10(sqrt(src) / fullScale + d), 0): level below full scale, clipped at 0 dB. NaN stays NaN.
void watts2dBFS(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& fullScale);

/// sqrt(src): rms volts into 1 ohm.
void watts2Vrms(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range);

/// 20 log10(sqrt(src) + d): dB over 1 V.
void watts2dBV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range);

/// 20 log10(sqrt(src) + d) + 120: dB over 1 uV.
void watts2dBuV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range);

/// 10^((src - offset) / 10)
void dB2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset);

/// src^2 / resistance
void vrms2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance);

/// (10^(src / 20))^2 / resistance
void dBV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
               const double& resistance);

/// (10^((src - 120) / 20))^2 / resistance
void dBuV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance);

}  // namespace SpectrumMeasurementsUtils

}  // namespace dspwavedecks
