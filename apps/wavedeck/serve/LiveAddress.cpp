#include "LiveAddress.h"

#include <charconv>
#include <system_error>

#include "UsageError.h"

namespace program {

LiveAddress readLiveAddress(const std::string& text) {
    LiveAddress address;
    const auto colon = text.rfind(':');
    const std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
    if (colon != std::string::npos) {
        address.host = text.substr(0, colon);
    }
    if (address.host.size() > 2 && address.host.front() == '[' && address.host.back() == ']') {
        address.host = address.host.substr(1, address.host.size() - 2);
    }
    const char* end = port.data() + port.size();
    const auto [rest, error] = std::from_chars(port.data(), end, address.port);
    if (port.empty() || address.host.empty() || rest != end || error != std::errc()) {
        throw UsageError("--serve: `" + text + "` is not [HOST:]PORT");
    }
    return address;
}

std::string toText(const LiveAddress& address) {
    const bool isIPv6 = address.host.find(':') != std::string::npos;
    return (isIPv6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

}  // namespace program
