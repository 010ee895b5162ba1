#include "SampleFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace program {
namespace {

static_assert(std::endian::native == std::endian::little, "raw samples are decoded as the machine stores them");

template <typename Stored>
void decodeAsIs(const unsigned char* stored, std::size_t count, double* values) {
    for (std::size_t i = 0; i < count; ++i) {
        Stored number{};
        std::memcpy(&number, stored + i * sizeof number, sizeof number);
        values[i] = static_cast<double>(number);
    }
}

void decode16(const unsigned char* stored, std::size_t count, double* values) {
    decodeAsIs<std::int16_t>(stored, count, values);
    std::transform(values, values + count, values, [](double value) { return value / 32768.0; });
}

void decodeSigned8(const unsigned char* stored, std::size_t count, double* values) {
    decodeAsIs<std::int8_t>(stored, count, values);
    std::transform(values, values + count, values, [](double value) { return value / 128.0; });
}

void decodeUnsigned8(const unsigned char* stored, std::size_t count, double* values) {
    std::transform(stored, stored + count, values, [](unsigned char number) { return (number - 128.0) / 128.0; });
}

/// Receivers that deliver unsigned bytes have their zero between 127 and 128.
void decodeComplexUnsigned8(const unsigned char* stored, std::size_t count, double* values) {
    std::transform(stored, stored + count, values, [](unsigned char number) { return (number - 127.5) / 128.0; });
}

constexpr std::array<SampleFormat, 9> formats{{
    {"f32", "32-bit float", "values as stored", 4, false, decodeAsIs<float>},
    {"f64", "64-bit float", "values as stored", 8, false, decodeAsIs<double>},
    {"s16", "16-bit signed", "full scale is 1: number / 32768", 2, false, decode16},
    {"u8", "8-bit unsigned", "full scale is 1: (number - 128) / 128", 1, false, decodeUnsigned8},
    {"cf32", "complex 32-bit float", "values as stored", 4, true, decodeAsIs<float>},
    {"cf64", "complex 64-bit float", "values as stored", 8, true, decodeAsIs<double>},
    {"cs16", "complex 16-bit signed", "full scale is 1: number / 32768", 2, true, decode16},
    {"cs8", "complex 8-bit signed", "full scale is 1: number / 128", 1, true, decodeSigned8},
    {"cu8", "complex 8-bit unsigned", "full scale is 1: (number - 127.5) / 128", 1, true, decodeComplexUnsigned8},
}};

}  // namespace

const SampleFormat* findSampleFormat(std::string_view name) {
    const auto* found =
        std::find_if(formats.begin(), formats.end(), [&](const SampleFormat& format) { return format.name == name; });
    return found == formats.end() ? nullptr : found;
}

std::string_view sampleFormatNames() {
    return "f32 f64 s16 u8 cf32 cf64 cs16 cs8 cu8";
}

}  // namespace program
