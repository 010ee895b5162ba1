#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace program {

/// How raw samples are stored: numbers of one type side by side; of a complex sample the real part first.
/// A value is (number - zero) / fullScale.
struct SampleFormat {
    std::string name;             ///< as typed at --format
    std::size_t bytes = 0;        ///< bytes of one number
    bool isComplex = false;       ///< two numbers a sample
    bool isInteger = false;       ///< numbers that are divided by their full scale
    bool isBigEndian = false;     ///< most significant byte first
    bool namesByteOrder = false;  ///< the name says which byte comes first, or one byte is all
    double zero = 0.0;            ///< stored number that stands for 0
    double fullScale = 1.0;       ///< 2 to the number of bits less one, of integers
    /// values[i] = (number i - zero) * factor
    void (*decode)(const unsigned char* stored, std::size_t count, double zero, double factor,
                   double* values) = nullptr;

    /// The name of the format in SigMF's metadata: "ci16_be".
    std::string sigmfName() const;
    /// What the numbers are, for the report: "complex 16-bit signed".
    std::string meaning() const;
    /// How they become values, for the report: "full scale is 1: number / 32768".
    std::string scale() const;
};

/// The format of a name: f32 f64 s8 s16 s32 u8 u16 u32 (i for s too), with c in front for complex and r for real
/// samples, with _le (the default) or _be behind for the order of the bytes. Nothing when it is no such name.
std::optional<SampleFormat> findSampleFormat(std::string_view name);

/// The format that the extension of a file stands for, among those that receivers' recordings usually have; nothing
/// when the extension says nothing about the samples.
std::optional<SampleFormat> findSampleFormatOfFile(const std::string& path);

/// All names, one by one.
std::vector<std::string> sampleFormats();

/// All names, for people.
std::string_view sampleFormatNames();

}  // namespace program
