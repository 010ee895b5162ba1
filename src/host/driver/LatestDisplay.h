#pragma once

#include <cstddef>
#include <vector>

#include "Display.h"

namespace wavedeck::driver {

/// The display of frames, responses and spectra: the latest output of each signal; of a spectrogram, the lines that
/// came since the last update.
class LatestDisplay : public Display {
public:
    explicit LatestDisplay(std::size_t numSignals);

    void take(std::size_t signal, const DisplayInput& input) override;
    void setForm(std::size_t signal, std::size_t channels, bool isMagPhase) override;
    void dropOutputs() override;
    void dropAll() override { dropOutputs(); }
    void dropNewerThan(double) override { dropOutputs(); }
    void endReplay() override {}
    void layOut() override;
    void noteSeen() override;

private:
    /// Lines of one signal's spectrogram, oldest first.
    struct Lines {
        std::vector<double> frequencies;  ///< [length]
        std::vector<double> values;       ///< [count][channels][length]
        std::size_t length = 0;
        std::size_t channels = 0;
        std::size_t count = 0;
    };

    static void gather(Lines& lines, const DisplayInput& input, std::size_t block);
    static void layOut(const Lines& lines, std::vector<double>& data);

    // state
    std::vector<std::size_t> channels_;
    std::vector<Lines> lines_;
    std::vector<bool> isSpectrogram_;
};

}  // namespace wavedeck::driver
