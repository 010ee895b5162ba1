#include "SampleFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "EngineeringNumber.h"

namespace program {
namespace {

static_assert(std::endian::native == std::endian::little, "raw samples are decoded as the machine stores them");

template <std::size_t bytes>
using Bits = std::conditional_t<
    bytes == 1, std::uint8_t,
    std::conditional_t<bytes == 2, std::uint16_t, std::conditional_t<bytes == 4, std::uint32_t, std::uint64_t>>>;

template <typename Number>
Number reversed(Number number) {
    std::array<unsigned char, sizeof number> bytes{};
    std::memcpy(bytes.data(), &number, sizeof number);
    std::reverse(bytes.begin(), bytes.end());
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

template <typename Stored, bool isBigEndian>
void decode(const unsigned char* stored, std::size_t count, double zero, double factor, double* values) {
    for (std::size_t i = 0; i < count; ++i) {
        Bits<sizeof(Stored)> bits{};
        std::memcpy(&bits, stored + i * sizeof bits, sizeof bits);
        if constexpr (isBigEndian) {
            bits = reversed(bits);
        }
        // The full scale is a power of two: a product with its inverse rounds as little as a quotient.
        values[i] = (static_cast<double>(std::bit_cast<Stored>(bits)) - zero) * factor;
    }
}

struct NumberType {
    std::string_view name;
    std::string_view meaning;
    std::size_t bytes;
    decltype(SampleFormat::decode) littleEndian;
    decltype(SampleFormat::decode) bigEndian;
};

template <typename Stored>
constexpr NumberType numberType(std::string_view name, std::string_view meaning) {
    return {name, meaning, sizeof(Stored), decode<Stored, false>, decode<Stored, true>};
}

constexpr std::array<NumberType, 8> numberTypes{
    numberType<float>("f32", "32-bit float"),
    numberType<double>("f64", "64-bit float"),
    numberType<std::int8_t>("s8", "8-bit signed"),
    numberType<std::int16_t>("s16", "16-bit signed"),
    numberType<std::int32_t>("s32", "32-bit signed"),
    numberType<std::uint8_t>("u8", "8-bit unsigned"),
    numberType<std::uint16_t>("u16", "16-bit unsigned"),
    numberType<std::uint32_t>("u32", "32-bit unsigned"),
};

const NumberType* findNumberType(std::string name) {
    if (name.starts_with('i')) {
        name.front() = 's';
    }
    const auto* found =
        std::find_if(numberTypes.begin(), numberTypes.end(), [&](const NumberType& type) { return type.name == name; });
    return found == numberTypes.end() ? nullptr : found;
}

/// Extensions beside the names of the formats themselves. Left out are those that different programs use for different
/// formats, such as c32 and c64: integers or floats, of a part or of the whole sample.
constexpr std::array<std::pair<std::string_view, std::string_view>, 14> usualExtensions{{
    {"cfile", "cf32"},
    {"fc32", "cf32"},
    {"fc64", "cf64"},
    {"sc8", "cs8"},
    {"sc16", "cs16"},
    {"sc32", "cs32"},
    {"uc8", "cu8"},
    {"uc16", "cu16"},
    {"c8", "cs8"},
    {"c16", "cs16"},
    {"complex16s", "cs8"},
    {"complex16u", "cu8"},
    {"complex32s", "cs16"},
    {"complex32u", "cu16"},
}};

}  // namespace

std::string SampleFormat::meaning() const {
    std::string text(isComplex ? "complex " : "");
    const auto number = name.substr(isComplex || name.starts_with('r') ? 1 : 0);
    text += findNumberType(number.substr(0, number.find('_')))->meaning;
    return text + (isBigEndian ? ", big-endian" : "");
}

std::string SampleFormat::sigmfName() const {
    auto number = name.substr(isComplex || name.starts_with('r') ? 1 : 0);
    number.resize(std::min(number.find('_'), number.size()));
    std::replace(number.begin(), number.end(), 's', 'i');
    const std::string order = bytes == 1 ? "" : isBigEndian ? "_be" : "_le";
    return (isComplex ? 'c' : 'r') + number + order;
}

std::string SampleFormat::scale() const {
    if (!isInteger) {
        return "values as stored";
    }
    const auto number = zero == 0.0 ? "number" : "(number - " + formatQuantity(zero, "", 17) + ")";
    return "full scale is 1: " + number + " / " + formatQuantity(fullScale, "", 17);
}

std::optional<SampleFormat> findSampleFormat(std::string_view name) {
    SampleFormat format;
    format.name = name;
    format.isComplex = name.starts_with('c');
    if (name.starts_with('c') || name.starts_with('r')) {
        name.remove_prefix(1);
    }
    format.isBigEndian = name.ends_with("_be");
    format.namesByteOrder = format.isBigEndian || name.ends_with("_le");
    if (format.namesByteOrder) {
        name.remove_suffix(3);
    }
    const auto* type = findNumberType(std::string(name));
    if (type == nullptr) {
        return std::nullopt;
    }
    format.bytes = type->bytes;
    format.namesByteOrder = format.namesByteOrder || format.bytes == 1;
    format.decode = format.isBigEndian ? type->bigEndian : type->littleEndian;
    format.isInteger = type->name.front() != 'f';
    if (format.isInteger) {
        format.fullScale = std::ldexp(1.0, static_cast<int>(8 * format.bytes) - 1);
    }
    if (type->name.front() == 'u') {
        // Receivers that deliver unsigned bytes have their zero between 127 and 128.
        format.zero = format.isComplex && format.bytes == 1 ? 127.5 : format.fullScale;
    }
    return format;
}

std::optional<SampleFormat> findSampleFormatOfFile(const std::string& path) {
    const auto file = path.substr(path.rfind('/') + 1);
    const auto dot = file.rfind('.');
    if (dot == std::string::npos) {
        return std::nullopt;
    }
    auto extension = file.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (extension == "rf64") {
        return std::nullopt;  // a sound file
    }
    const auto* usual = std::find_if(usualExtensions.begin(), usualExtensions.end(),
                                     [&](const auto& entry) { return entry.first == extension; });
    if (usual != usualExtensions.end()) {
        return findSampleFormat(usual->second);
    }
    // The order of the bytes right behind the number: s16le.
    const auto order = extension.size() - std::min<std::size_t>(extension.size(), 2);
    if (order > 0 && extension[order - 1] >= '0' && extension[order - 1] <= '9' &&
        (extension.ends_with("le") || extension.ends_with("be"))) {
        extension.insert(order, 1, '_');
    }
    return findSampleFormat(extension);
}

std::vector<std::string> sampleFormats() {
    std::vector<std::string> names;
    for (const char* order : {"", "_be"}) {
        for (const char* part : {"", "c"}) {
            for (const auto& type : numberTypes) {
                if (*order == '\0' || type.bytes > 1) {
                    names.push_back(part + std::string(type.name) + order);
                }
            }
        }
    }
    return names;
}

std::string_view sampleFormatNames() {
    return "f32 f64 s8 s16 s32 u8 u16 u32, with c before it for complex samples, with _be behind it for big-endian "
           "ones; csv";
}

}  // namespace program
