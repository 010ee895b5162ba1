#include "TarArchive.h"

#include <array>
#include <cstring>
#include <optional>

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

}  // namespace

std::vector<TarEntry> listTarArchive(const std::string& path) {
    ByteSource source(path);
    if (!source.size()) {
        throw UsageError(path + ": an archive must be a file, not a pipe");
    }
    std::vector<TarEntry> entries;
    Block block{};
    std::uint64_t position = 0;
    while (source.seek(position) && source.read(block.data(), blockSize) == blockSize && block[0] != 0) {
        const auto bytes = readField(block, 124, 12);
        if (!hasChecksum(block) || !bytes) {
            throw UsageError(path + ": no tar archive: a bad header at byte " + std::to_string(position));
        }
        position += blockSize;
        if (*bytes > *source.size() - position) {
            throw UsageError(path + ": the archive is cut short in `" + textField(block, 0, 100) + '`');
        }
        constexpr std::size_t typeAt = 156;
        if (block[typeAt] == '0' || block[typeAt] == 0) {
            entries.push_back({textField(block, 0, 100), position, *bytes});
        }
        position += (*bytes + blockSize - 1) / blockSize * blockSize;
    }
    return entries;
}

}  // namespace program
