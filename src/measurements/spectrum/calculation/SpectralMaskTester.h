#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "EnumKeys.h"
#include "SpectralMaskTesterEnum.h"
#include "spectralMaskStruct.h"

namespace dspwavedecks {

/// Compares the spectra of all channels, frame after frame, with an upper and a lower limit line, and counts how many
/// frames passed. Lines are levels relative to a reference, interpolated once onto each channel's grid.
///
/// Channels are numbered over all signals: those of signal s follow those of the signals below s. A signal's channels
/// are counted once, that is, half of what the host counts for a complex signal.
///
/// A bin fails where it lies above reference + upper line, or below reference + lower line. NaN never fails: neither a
/// bin nor a place that a line does not cover.
class SpectralMaskTester {
public:
    using EnabledMasks = SpectralMaskTesterEnum::EnabledMasks;
    using ReferenceLevel = SpectralMaskTesterEnum::ReferenceLevel;

    void setEnabledMasks(const EnabledMasks& value) { enabledMasks = value; }
    /// n frequencies in Hz, then n levels in dB over the reference; or one level.
    void setUpperMask(const std::vector<double>& value) { upperMask = value; }
    void setLowerMask(const std::vector<double>& value) { lowerMask = value; }
    void setReferenceLevel(const ReferenceLevel& value) { referenceLevel = value; }
    void setCustomReferenceLevel(const double& value) { customReferenceLevel = value; }
    /// Added to the frequencies of the masks, Hz.
    void setMaskFrequencyOffset(const double& value) { maskFrequencyOffset = value; }
    /// Channel, of the selected signal, whose strongest bin is the reference.
    void setSelectedChannel(const unsigned long& value) { selectedChannel = value; }
    void setSelectedSignal(const unsigned long& value) { selectedSignal = value; }
    /// Frequencies between which a mask of one level holds, Hz.
    void setFrequencyLimits(const std::vector<double>& value) { frequencyLimits = value; }
    /// By channel, added to its frequencies, Hz.
    void setFrequencyOffset(const std::vector<double>& value) { frequencyOffset = value; }

    /// The values of the option words; an unknown word throws std::out_of_range.
    EnabledMasks getEnabledMasksEnum(const std::string& key) const { return enumAt(enabledMasksKeys, key); }
    ReferenceLevel getReferenceLevelEnum(const std::string& key) const { return enumAt(referenceLevelKeys, key); }

    bool isUpperMaskEnabled() const;
    bool isLowerMaskEnabled() const;

    /// Interpolates the lines for all channels and locks them. A frame without points locks nothing.
    /// freq         [numPoints] Hz, the head of a frame
    /// numChannels  [numSignals] as the host counts them
    /// isComplex    [numSignals] non-zero for a complex signal
    void setup(const double* freq, const int& numSignals, const unsigned long& numPoints,
               const std::vector<int>& numChannels, const std::vector<int>& isComplex);

    /// Whether the lines stand for such channels.
    bool isSetUpFor(const int& numSignals, const std::vector<int>& numChannels,
                    const std::vector<int>& isComplex) const;

    /// Tests one signal; the counts move on with the last one.
    /// data       [(1 + channels) * numPoints] a frame: the grid in Hz, then the channels
    /// isNewTest  false: the frame is one that was seen before, its test takes the place of the last one
    /// A signal whose grid is not that of its lines (length, first or last frequency) gets new ones first.
    const spectralMaskStruct* performMaskTest(const double* data, const int& signal, const unsigned long& numPoints,
                                              const bool& isNewTest);

    int getNumChannels(const int& signal) const;
    int getTotalNumChannels() const;
    /// Number of a signal's channel among those of all signals.
    unsigned long getChannelIdx(const int& signal, const unsigned long& channel) const;

    /// Forgets all counts and the standing; the lines stay.
    void reset();
    /// Lets the next frame set up anew, with the settings of the moment. Counts stay.
    void release();
    bool isLocked() const { return locked; }

private:
    void interpolateMasks(const double* freq, std::size_t numPoints, std::size_t channel);
    bool hasGrid(const double* freq, std::size_t numPoints, std::size_t channel) const;
    double offsetOf(std::size_t channel) const;
    double findReference(const double* data, int signal, std::size_t numPoints) const;
    void testChannel(const double* bins, std::size_t numPoints, double reference, std::size_t channel);
    void countTest(bool passed, bool isNewTest);

    const EnumKeys<EnabledMasks> enabledMasksKeys{{"none", EnabledMasks::none},
                                                  {"upper", EnabledMasks::upper},
                                                  {"lower", EnabledMasks::lower},
                                                  {"upper-and-lower", EnabledMasks::upperAndLower}};
    const EnumKeys<ReferenceLevel> referenceLevelKeys{{"custom", ReferenceLevel::custom},
                                                      {"spectrum-peak", ReferenceLevel::spectrumPeak}};

    // options
    EnabledMasks enabledMasks = EnabledMasks::none;
    ReferenceLevel referenceLevel = ReferenceLevel::custom;
    std::vector<double> upperMask{std::numeric_limits<double>::infinity()};
    std::vector<double> lowerMask{-std::numeric_limits<double>::infinity()};
    std::vector<double> frequencyLimits{-5000.0, 5000.0};  // Hz
    std::vector<double> frequencyOffset;                   // [channel] Hz
    double customReferenceLevel = 0.0;
    double maskFrequencyOffset = 0.0;  // Hz
    unsigned long selectedChannel = 0;
    unsigned long selectedSignal = 0;
    int numSignals = 0;
    std::vector<int> numChannels;  // [signal]
    std::vector<int> isComplex;    // [signal]

    // derived
    bool locked = false;
    std::vector<std::vector<double>> frequencies;      // [channel][bin] Hz
    std::vector<std::vector<double>> upperMaskOnGrid;  // [channel][bin]; NaN where there is no line
    std::vector<std::vector<double>> lowerMaskOnGrid;

    // state
    spectralMaskStruct status;
    std::vector<unsigned long> currentFailingChannels;  // of the frame under way
    bool upperMaskPassing = true;
    bool lowerMaskPassing = true;
};

}  // namespace dspwavedecks
