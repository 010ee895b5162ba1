#pragma once

#include <cstdint>
#include <string>

namespace program {

/// Where `--serve [HOST:]PORT` listens.
struct LiveAddress {
    std::string host = "127.0.0.1";
    std::uint16_t port = 0;
};

/// Reads "PORT" or "HOST:PORT" (an IPv6 address in brackets). Throws UsageError for anything else.
LiveAddress readLiveAddress(const std::string& text);

/// HOST:PORT as URLs have it, an IPv6 address in brackets: the reverse of readLiveAddress().
std::string toText(const LiveAddress& address);

}  // namespace program
