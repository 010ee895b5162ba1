// The live connection: any bytes behind a good handshake, as a browser gone mad would send them. The server takes them
// or closes; it is the same server for all inputs, so that what one of them leaves behind shows at the next.

#include <Poco/Exception.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Timespan.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "LimitedAllocation.h"
#include "LiveServer.h"

namespace {

constexpr const char* handshake =
    "GET /live HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
    "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n";

/// A server over a folder with a page.
class Server {
public:
    Server() {
        std::string name = (std::filesystem::temp_directory_path() / "wavedeck_fuzz_XXXXXX").string();
        folder_ = mkdtemp(name.data());
        std::ofstream(folder_ / "index.html") << "page";
        server_ = std::make_unique<program::LiveServer>(
            program::LiveServer::Settings{"127.0.0.1", 0, folder_.string(), 16},
            program::LiveServer::Callbacks{
                [] { return std::string(R"({"type":"hello"})"); },
                [](const program::TuneRequest& request) { return request.options.empty() ? "" : request.stage; }});
        const std::string address = server_->address();
        port_ = static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
    }
    ~Server() {
        server_.reset();
        std::filesystem::remove_all(folder_);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Sends the bytes, then ends its side, and reads until the server has ended its own.
    void send(const std::uint8_t* data, std::size_t size) {
        Poco::Net::StreamSocket socket(Poco::Net::SocketAddress("127.0.0.1", port_));
        socket.setReceiveTimeout(Poco::Timespan(20, 0));
        const std::string opening = handshake;
        socket.sendBytes(opening.data(), static_cast<int>(opening.size()));
        socket.sendBytes(data, static_cast<int>(size));
        socket.shutdownSend();
        std::array<char, 4096> received{};
        try {
            while (socket.receiveBytes(received.data(), static_cast<int>(received.size())) > 0) {
            }
        } catch (const Poco::TimeoutException&) {
            std::abort();  // hangs
        } catch (const Poco::Exception&) {
            return;  // closed with bytes unread
        }
    }

private:
    std::filesystem::path folder_;
    std::unique_ptr<program::LiveServer> server_;
    std::uint16_t port_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    static Server server;
    constexpr std::size_t most = 100000;
    try {
        server.send(data, std::min(size, most));
    } catch (const Poco::Exception&) {
        return 0;  // closed while we sent
    }
    return 0;
}
