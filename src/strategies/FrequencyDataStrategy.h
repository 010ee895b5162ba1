#pragma once

#include <string>
#include <vector>

#include "DataStrategy.h"

namespace dspwavedecks {

/// Client messages of spectra and spectrograms. Data is what the spectrum estimator put out: a block of frequencies,
/// then a block a channel. A block holds spectra of L points one behind the other, the newest at its tail.
class FrequencyDataStrategy : public DataStrategy {
public:
    FrequencyDataStrategy();
    ~FrequencyDataStrategy() override;

    void processDataAllSignals(const Buffers& data, int numSignalsGiven, std::vector<int>& numChannels,
                               std::vector<int>& numPoints, std::vector<std::string>& ids,
                               ObjectPointer& message) override;

    /// Whether the stretch in hand is to be sent.
    virtual bool isChannelDataValid(const Buffers& data, int signal) const;
    /// Works out the lengths of the signal's buffer.
    /// framePoints  points a channel, as the host tells them
    virtual void computeCurrentInputMetrics(const Buffers& data, int signal, int numChannels, int framePoints);
    /// The frequencies of one spectrum.
    virtual void packageFrequencyPocoArray(const Buffers& data, int signal, ArrayPointer& frequencyArray);
    /// The same for a grid that is not uniform; counts the points that a client inserts to show it in steps of at most
    /// the grid's smallest.
    virtual void packageInterpFrequencyPocoArray(const Buffers& data, int signal, ArrayPointer& frequencyArray);
    /// The stretch of one line of a channel's spectrogram, line 0 being the newest.
    virtual void computeSpectrogramDataStartAndEndIdx(int channel, int line, int framePoints);
    /// The stretch of a channel's spectrum: the tail of its block.
    virtual void computeSpectrumDataStartAndEndIdx(int channel, int framePoints);
    virtual int getNumDataSignals();
    virtual int getNumChannels(int signal, const std::vector<int>& numChannels);
    /// L: that of the thinned spectrum if a thinner is at work.
    virtual int getNumPointsPerChannel(int signal);

    /// Index of a channel in a list over the channels of all signals: base + counts[0] + ... + counts[signal - 1].
    static int getFrequencyOffsetIdx(int signal, int base, const std::vector<int>& counts);

protected:
    /// The frequencies of one spectrum out of a store of so many.
    ArrayPointer packageFrequencies(const double* frequencies, std::size_t count);
    /// Counts the interpolation points of such a grid.
    void countInterpolationPoints(const double* frequencies, std::size_t count);
    bool isStretchInBuffer(const Buffers& data, int signal) const;

    // Derived, from the message's "spectrum".
    int numSpectrogramLines = 0;
    int spectrumLength = 0;  ///< 0: nothing to show
    bool showSpectrum = false;
    bool showSpectrogram = false;
    bool plotMaxHoldTrace = false;
    bool plotMinHoldTrace = false;
    bool linearFrequencyVector = true;
    double minDeltaF = 1.0;               ///< Hz, smallest step of the grid
    std::vector<double> frequencyOffset;  ///< Hz, one a channel of all signals

    // Scratch of one update.
    int numSignals = 0;
    int numPointsPerChannel = 0;  ///< L, points of one spectrum
    int pointsPerBlock = 0;       ///< B, points of one block of the buffer
    int numLinesInBuffer = 0;     ///< B / L
    int numHeaderBlocks = 1;      ///< blocks ahead of the channels
    int dataStartIdx = 0;         ///< stretch of the buffer in hand
    int dataEndIdx = 0;
    int numInterpolationPoints = 0;

private:
    /// The numbers of one channel and the places of what is not finite.
    struct ChannelArrays {
        ArrayPointer data;
        ArrayPointer nanIndex;
    };

    void addTimeAndSpectrumInformation(ObjectPointer& message);
    void addMaxMinHoldInformation(ObjectPointer& signalObject, int signal, int numChannels);
    void addMeasurementInformation(ObjectPointer& measurements);
    bool hasPhaseNoise() const;
    ObjectPointer packagePhaseNoise(int signal, int numChannels) const;
    ObjectPointer packageSignal(const Buffers& data, int signal, std::vector<int>& numChannels, int framePoints,
                                const std::string& id);
    /// Sends a channel's values; the limits stay as they are if there are none.
    ChannelArrays processDataForChannel(const Buffers& data, double& dataMax, double& dataMin, int signal, int channel,
                                        int framePoints);
    void processSpectrumDataForChannel(const Buffers& data, int signal, int channel, int framePoints,
                                       JsonArrayWriter& writer);
    void processSpectrogramDataForChannel(const Buffers& data, int signal, int channel, int framePoints,
                                          JsonArrayWriter& writer);
    bool appendStretch(const Buffers& data, int signal, JsonArrayWriter& writer);
    std::size_t countFrequencies(std::size_t count) const;
};

}  // namespace dspwavedecks
