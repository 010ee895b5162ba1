#pragma once

#include <cstddef>
#include <vector>

#include "Display.h"

namespace wavedeck::driver {

/// The display of a simulation's spectra. An output is a header of n slots and then, channel after channel, n slots of
/// one simulation frame each. The outputs since the last update are joined: the headers first, then each channel's
/// slots; without a spectrogram the latest output stands alone.
class SlotDisplay : public Display {
public:
    explicit SlotDisplay(std::size_t numSignals);

    void take(std::size_t signal, const DisplayInput& input) override;
    void setForm(std::size_t signal, std::size_t channels, bool isMagPhase) override;
    void dropOutputs() override;
    void dropAll() override { dropOutputs(); }
    void dropNewerThan(double) override { dropOutputs(); }
    void endReplay() override {}
    void layOut() override;
    void noteSeen() override;

private:
    /// Lines that wait for an update; a spectrum is laid out as soon as it comes.
    struct Slots {
        std::vector<double> header;
        std::vector<std::vector<double>> rows;  ///< of each channel
        std::size_t frameSize = 0;
        bool areLines = false;
    };

    void clear(std::size_t signal);

    // state
    std::vector<Slots> slots_;  ///< of each signal
};

}  // namespace wavedeck::driver
