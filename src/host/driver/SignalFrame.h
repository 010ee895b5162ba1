#pragma once

#include <span>
#include <vector>

namespace wavedeck::driver {

/// One signal of the frame on its way through the chain.
struct SignalFrame {
    std::span<const double> raw;     ///< the frame as it came
    std::vector<double> blocks;      ///< leading block and channels, where the chain has that form
    std::vector<double> newestLine;  ///< frequency block and newest line a channel, of a spectrogram

    std::vector<double>* current = nullptr;  ///< what the stages so far have made of it; null: the raw frame
    bool hasNews = true;                     ///< false behind a replacing stage that put nothing out
    bool newestLineMade = false;
};

}  // namespace wavedeck::driver
