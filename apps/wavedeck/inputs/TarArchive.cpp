#include "TarArchive.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>
#include <system_error>

#include "ByteSource.h"
#include "UsageError.h"

namespace program {
namespace {

constexpr std::size_t blockSize = 512;
using Block = std::array<unsigned char, blockSize>;

/// A field of octal digits, or of big-endian bytes behind a first byte of 0x80.
std::optional<std::uint64_t> readField(const Block& block, std::size_t begin, std::size_t length) {
    std::uint64_t value = 0;
    if (block[begin] == 0x80) {
        for (std::size_t i = begin + length - 8; i < begin + length; ++i) {
            value = (value << 8U) | block[i];
        }
        return value < (std::uint64_t{1} << 62U) ? std::optional(value) : std::nullopt;
    }
    for (std::size_t i = begin; i < begin + length && block[i] != 0 && block[i] != ' '; ++i) {
        if (block[i] < '0' || block[i] > '7') {
            return std::nullopt;
        }
        value = value * 8 + (block[i] - static_cast<unsigned>('0'));
    }
    return value;
}

/// A header's checksum takes its own eight bytes for blanks.
bool hasChecksum(const Block& block) {
    constexpr std::size_t begin = 148;
    constexpr std::size_t length = 8;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < blockSize; ++i) {
        sum += i >= begin && i < begin + length ? static_cast<unsigned char>(' ') : block[i];
    }
    return readField(block, begin, length - 1) == sum;
}

std::string textField(const Block& block, std::size_t begin, std::size_t length) {
    const auto* text = reinterpret_cast<const char*>(block.data() + begin);
    return {text, strnlen(text, length)};
}

/// What a header in front of a file's own says of it in the place of that.
struct LongerFields {
    std::optional<std::string> name;
    std::optional<std::uint64_t> bytes;
    bool isSparse = false;
    std::optional<std::string> sparseName = {};  ///< of a file whose other name was made up by tar
};

/// Records of pax: "LENGTH KEY=VALUE" and a line break each, the length that of the whole record.
LongerFields readPaxRecords(std::string_view text) {
    LongerFields fields;
    while (!text.empty()) {
        std::size_t length = 0;
        const auto* const end = text.data() + text.size();
        const auto [behind, error] = std::from_chars(text.data(), end, length);
        const auto digits = static_cast<std::size_t>(behind - text.data());
        if (error != std::errc() || length < digits + 2 || length > text.size()) {
            break;
        }
        const auto record = text.substr(digits + 1, length - digits - 2);
        const auto value = record.substr(std::min(record.size(), record.find('=') + 1));
        if (record.starts_with("path=")) {
            fields.name = std::string(value);
        } else if (std::uint64_t bytes = 0; record.starts_with("size=")) {
            std::from_chars(value.data(), value.data() + value.size(), bytes);
            fields.bytes = bytes;
        } else if (record.starts_with("GNU.sparse.")) {
            fields.isSparse = true;
            if (record.starts_with("GNU.sparse.name=")) {
                fields.sparseName = std::string(value);
            }
        }
        text.remove_prefix(length);
    }
    return fields;
}

/// The content of a header of pax (type x) or of a long name of GNU (type L).
LongerFields readLongerFields(ByteSource& source, std::uint64_t position, std::uint64_t bytes, bool isPax) {
    constexpr std::uint64_t most = 1U << 20U;
    std::string text(static_cast<std::size_t>(std::min(bytes, most)), '\0');
    source.seek(position);
    text.resize(source.read(reinterpret_cast<unsigned char*>(text.data()), text.size()));
    return isPax ? readPaxRecords(text) : LongerFields{text.substr(0, text.find('\0')), std::nullopt};
}

}  // namespace

std::vector<TarEntry> listTarArchive(const std::string& path) {
    ByteSource source(path);
    if (!source.size()) {
        throw UsageError(path + ": an archive must be a file, not a pipe");
    }
    std::vector<TarEntry> entries;
    LongerFields longer;
    Block block{};
    std::uint64_t position = 0;
    while (source.seek(position) && source.read(block.data(), blockSize) == blockSize && block[0] != 0) {
        const auto field = readField(block, 124, 12);
        if (!hasChecksum(block) || !field) {
            throw UsageError(path + ": no tar archive: a bad header at byte " + std::to_string(position));
        }
        position += blockSize;
        constexpr std::size_t typeAt = 156;
        const auto type = block[typeAt];
        const bool isLonger = type == 'x' || type == 'L';
        const auto name = longer.name.value_or(textField(block, 0, 100));
        const auto bytes = isLonger ? *field : longer.bytes.value_or(*field);
        if (bytes > *source.size() - position) {
            throw UsageError(path + ": the archive is cut short in `" + name + '`');
        }
        if (isLonger) {
            const auto more = readLongerFields(source, position, bytes, type == 'x');
            longer = {more.name ? more.name : longer.name, more.bytes ? more.bytes : longer.bytes,
                      more.isSparse || longer.isSparse, more.sparseName ? more.sparseName : longer.sparseName};
        } else {
            if (longer.isSparse || type == 'S') {
                throw UsageError(path + ": holds `" + longer.sparseName.value_or(name) +
                                 "` without its holes; make the archive without --sparse");
            }
            if (type == '0' || type == 0) {
                entries.push_back({name, position, bytes});
            }
            longer = {};
        }
        position += (bytes + blockSize - 1) / blockSize * blockSize;
    }
    return entries;
}

}  // namespace program
