#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace program {

/// The bytes of a file, a pipe or standard input, in order; a stop that is asked for ends them.
class ByteSource {
public:
    /// path  a file, or "-" for standard input. Throws UsageError when it cannot be opened or is a directory.
    explicit ByteSource(const std::string& path);
    ~ByteSource();
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    /// As it is shown to people.
    const std::string& name() const { return name_; }

    /// Bytes in all, of a file; nothing for a pipe.
    std::optional<std::uint64_t> size() const { return size_; }

    /// Bytes in front of the next one.
    std::uint64_t position() const { return position_; }

    /// Whether the end was met.
    bool ended() const { return ended_; }

    /// Reads up to `wanted` bytes; fewer only at the end or for a stop. Throws UsageError when reading fails.
    std::size_t read(unsigned char* bytes, std::size_t wanted);

    /// Reads what there is, at most `wanted` bytes; waits for the first. 0 only at the end or for a stop.
    std::size_t readSome(unsigned char* bytes, std::size_t wanted);

    /// Goes to a position; a pipe only goes forward. Returns false where the source cannot go there.
    bool seek(std::uint64_t position);

private:
    std::string name_;
    int descriptor_ = -1;
    std::optional<std::uint64_t> size_;
    std::uint64_t begin_ = 0;  ///< of a file that came as standard input: where it stood
    std::uint64_t position_ = 0;
    bool ended_ = false;
};

}  // namespace program
