#pragma once

#include <cstddef>
#include <vector>

namespace wavedeck::driver {

/// What a replacing stage, or the frame itself, brings to the display.
struct DisplayInput {
    std::vector<double>& buffer;  ///< one leading block, then the channels; may be swapped for another
    std::size_t channels;         ///< as the strategy counts them
    std::size_t frameSize;        ///< of a simulation's frame
    std::size_t lineLength;       ///< of a spectrogram's lines, 0 without a spectrogram
    bool isReplayed;
};

/// What the strategy is given at an update.
class Display {
public:
    explicit Display(std::size_t numSignals);
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    virtual ~Display();

    virtual void take(std::size_t signal, const DisplayInput& input) = 0;

    /// Tells how many channels a signal has from now on, and whether they are magnitude and phase. What was kept in
    /// another form is forgotten.
    virtual void setForm(std::size_t signal, std::size_t channels, bool isMagPhase) = 0;
    /// Makes room for so many points of a signal, where samples are kept.
    virtual void reserve(std::size_t signal, std::size_t points);
    /// Forgets the outputs and lines that a replacing stage made; a history of samples stays.
    virtual void dropOutputs() = 0;
    /// Forgets everything.
    virtual void dropAll() = 0;
    /// Forgets what lies behind the time to which the stream stepped back.
    virtual void dropNewerThan(double time) = 0;
    /// Forgets what was replayed: the stream goes on.
    virtual void endReplay() = 0;

    /// Brings data(), numChannels() and numPoints() to the present state.
    virtual void layOut() = 0;
    /// The strategy has seen what was laid out.
    virtual void noteSeen() = 0;

    const std::vector<std::vector<double>>& data() const { return data_; }
    std::vector<int>& numChannels() { return numChannels_; }
    std::vector<int>& numPoints() { return numPoints_; }

protected:
    std::vector<std::vector<double>> data_;  ///< of each signal: leading block, then the channels
    std::vector<int> numChannels_;
    std::vector<int> numPoints_;
};

}  // namespace wavedeck::driver
