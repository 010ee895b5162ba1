#pragma once

#include <cstdint>
#include <string>

#include "ByteSource.h"

namespace program {

/// SHA-512 (FIPS 180-4) of a stretch of bytes, as 128 lower-case hexadecimal digits; a stop that is asked for ends it
/// early. Throws UsageError when reading fails.
std::string sha512(ByteSource& source, std::uint64_t position, std::uint64_t bytes);

}  // namespace program
