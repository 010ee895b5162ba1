#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace program {

/// A file inside a tar archive.
struct TarEntry {
    std::string name;
    std::uint64_t position = 0;  ///< of its first byte in the archive
    std::uint64_t bytes = 0;
};

/// The plain files of an uncompressed tar archive (ustar, with the long names and sizes of pax and GNU).
/// Throws UsageError for a file that is no such archive or is cut short.
std::vector<TarEntry> listTarArchive(const std::string& path);

}  // namespace program
