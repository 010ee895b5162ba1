#pragma once

#include <span>

#include "Option.h"

/// The words of the spectrum engine, which the measurements on spectra share in part.
namespace dspwavedecks::catalogue::spectrum {

inline constexpr Word inputDomainWords[] = {
    {"time", 0, "samples"},
    {"frequency", 1, "spectra that were computed elsewhere"},
};

inline constexpr Word spectrumTypeWords[] = {
    {"power", 0, "power in a resolution bandwidth"},
    {"power-density", 1, "density per hertz"},
    {"rms", 2, "rms amplitude"},
};

inline constexpr Word methodWords[] = {
    {"welch", 0, "windowed, overlapping segments"},
    {"filter-bank", 1, "polyphase filter bank"},
};

inline constexpr Word frequencyRangeWords[] = {
    {"centered", 0, "from minus to plus half the sample rate"},
    {"one-sided", 1, "from 0 to half the sample rate"},
    {"two-sided", 2, "computed as one-sided"},
};

inline constexpr Word frequencyResolutionMethodWords[] = {
    {"rbw", 0, "by the resolution bandwidth"},
    {"window-length", 1, "by the length of the window"},
    {"num-frequency-bands", 2, "by the FFT length"},
};

inline constexpr Word frequencySpanWords[] = {
    {"full", 0, "all that the sample rate allows"},
    {"span-and-center-frequency", 1, "by span and center"},
    {"start-and-stop-frequencies", 2, "by its ends"},
};

inline constexpr Word windowWords[] = {
    {"blackman-harris", 0},
    {"chebyshev", 1},
    {"flat-top", 2},
    {"hamming", 3},
    {"hann", 4},
    {"kaiser", 5},
    {"rectangular", 6},
    {"custom", 7, "the samples in customWindow"},
};

inline constexpr Word averagingMethodWords[] = {
    {"exponential", 0, "by the forgetting factor"},
    {"vbw", 1, "by the video bandwidth"},
    {"running", 2, "by the number of averages"},
};

inline constexpr Word spectrumUnitsWords[] = {
    {"watts", 0},
    {"dbw", 1},
    {"dbm", 2},
    {"dbfs", 3},
    {"vrms", 4},
    {"dbv", 5},
    {"dbuv", 6},
    {"watts/hz", 7},
    {"dbw/hz", 8},
    {"dbm/hz", 9},
    {"dbfs/hz", 10},
    {"auto", 11, "as the input's units"},
    {"none", 12, "no conversion"},
};
/// The units that a measurement takes: all but "auto" and "none".
inline constexpr std::span<const Word> measurementUnitsWords = std::span(spectrumUnitsWords).first<11>();

inline constexpr Word inputDataTypeWords[] = {
    {"double"}, {"single"}, {"half"},   {"int8"},   {"int16"},  {"int32"},
    {"int64"},  {"uint8"},  {"uint16"}, {"uint32"}, {"uint64"},
};

}  // namespace dspwavedecks::catalogue::spectrum
