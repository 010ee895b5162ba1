#pragma once

#include <cstddef>
#include <string_view>

namespace program {

/// How raw samples are stored: numbers of one type side by side, little-endian; of a complex sample the real part
/// first.
struct SampleFormat {
    std::string_view name;     ///< as typed at --format
    std::string_view meaning;  ///< for the report
    std::string_view scale;    ///< how a stored number becomes a value
    std::size_t bytes;         ///< bytes of one number
    bool isComplex;
    /// Turns `count` stored numbers into values.
    void (*decode)(const unsigned char* stored, std::size_t count, double* values);
};

/// The format of a name; null when there is none.
const SampleFormat* findSampleFormat(std::string_view name);

/// All names, separated by blanks.
std::string_view sampleFormatNames();

}  // namespace program
