#include "Sha512.h"

#include <Poco/SHA2Engine.h>

#include <algorithm>
#include <vector>

namespace program {

std::string sha512(ByteSource& source, std::uint64_t position, std::uint64_t bytes) {
    Poco::SHA2Engine engine(Poco::SHA2Engine::SHA_512);
    std::vector<unsigned char> piece(std::size_t{1} << 18U);
    source.seek(position);
    while (bytes > 0) {
        const auto got =
            source.read(piece.data(), static_cast<std::size_t>(std::min<std::uint64_t>(bytes, piece.size())));
        if (got == 0) {
            break;
        }
        engine.update(piece.data(), static_cast<unsigned>(got));
        bytes -= got;
    }
    return Poco::SHA2Engine::digestToHex(engine.digest());
}

}  // namespace program
