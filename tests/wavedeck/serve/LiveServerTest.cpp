#include "LiveServer.h"

#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/Net/NetException.h>
#include <Poco/Net/WebSocket.h>
#include <Poco/StreamCopier.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <new>
#include <stdexcept>
#include <thread>

#include "LiveAddress.h"
#include "Test.h"
#include "UsageError.h"

namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using Poco::Net::HTTPRequest;
using Poco::Net::HTTPResponse;
using Poco::Net::WebSocket;

/// A server over a small folder, and browsers that talk to it.
class LiveServerTest : public testing::Test {
protected:
    LiveServerTest() {
        std::filesystem::create_directories(folder_ / "page");
        std::ofstream(folder_ / "secret.txt") << "not for browsers";
        std::ofstream(folder_ / "page" / "index.html") << "<html>the page</html>";
        std::filesystem::create_symlink(folder_ / "secret.txt", folder_ / "page" / "link.txt");
        server_ = std::make_unique<program::LiveServer>(
            program::LiveServer::Settings{"127.0.0.1", 0, (folder_ / "page").string(), 3},
            program::LiveServer::Callbacks{[this] { return hello(); },
                                           [this](const program::TuneRequest& request) { return tune(request); }});
        port_ = static_cast<std::uint16_t>(std::stoi(server_->address().substr(server_->address().rfind(':') + 1)));
    }
    ~LiveServerTest() override { std::filesystem::remove_all(folder_); }

    std::string hello() const {
        return canDescribe_ ? R"({"type":"hello","clients":[]})" : throw std::runtime_error("no description");
    }

    std::string tune(const program::TuneRequest& request) {
        if (request.stage == "full") {
            throw std::bad_alloc();
        }
        tunes_.push_back(request.client + "/" + request.stage + "/" + request.options.dump());
        return request.stage == "there" ? "" : "no stage " + request.stage;
    }

    /// Status and text of the answer.
    std::pair<int, std::string> get(const std::string& path) {
        Poco::Net::HTTPClientSession session("127.0.0.1", port_);
        HTTPRequest request(HTTPRequest::HTTP_GET, path, HTTPRequest::HTTP_1_1);
        session.sendRequest(request);
        HTTPResponse response;
        std::string text;
        Poco::StreamCopier::copyToString(session.receiveResponse(response), text);
        return {response.getStatus(), text};
    }

    /// A live connection that has had its hello; throws WebSocketException if refused.
    std::unique_ptr<WebSocket> connect(const std::map<std::string, std::string>& headers = {}) {
        Poco::Net::HTTPClientSession session("127.0.0.1", port_);
        HTTPRequest request(HTTPRequest::HTTP_GET, "/live", HTTPRequest::HTTP_1_1);
        for (const auto& [name, value] : headers) {
            request.set(name, value);
        }
        HTTPResponse response;
        auto socket = std::make_unique<WebSocket>(session, request, response);
        socket->setReceiveTimeout(Poco::Timespan(30, 0));
        EXPECT_EQ(receive(*socket)["type"], "hello");
        return socket;
    }

    static json receive(WebSocket& socket) {
        Poco::Buffer<char> buffer(0);
        int flags = 0;
        socket.receiveFrame(buffer, flags);
        return json::parse(buffer.begin(), buffer.end());
    }

    static json ask(WebSocket& socket, const std::string& text) {
        socket.sendFrame(text.data(), static_cast<int>(text.size()));
        return receive(socket);
    }

    template <typename Condition>
    static bool eventually(Condition condition) {
        for (int i = 0; i < 3000 && !condition(); ++i) {
            std::this_thread::sleep_for(10ms);
        }
        return condition();
    }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("live_server_" + std::to_string(::getpid()) + "_" +
                                                  testing::UnitTest::GetInstance()->current_test_info()->name());
    std::vector<std::string> tunes_;
    std::atomic<bool> canDescribe_{true};
    std::unique_ptr<program::LiveServer> server_;
    std::uint16_t port_ = 0;
};

TEST_F(LiveServerTest, servesThePageAndNothingOutsideItsFolder) {
    EXPECT_EQ(get("/"), std::pair(200, std::string("<html>the page</html>")));
    for (const char* path :
         {"/../secret.txt", "/%2e%2e/secret.txt", "/link.txt", "/nothing.js", "/page/", "//secret.txt"}) {
        EXPECT_EQ(get(path).first, 404) << path;
    }
}

TEST_F(LiveServerTest, tunesReachTheProgramAndErrorsComeBackInItsWords) {
    const auto socket = connect({{"Origin", "http://127.0.0.1:" + std::to_string(port_)}});
    const auto other = connect();
    // Whoever watches gets the new description, the one who tuned before the reply.
    const json anew = ask(*socket, R"({"type":"tune","request":7,"client":"c","stage":"there","options":{"rbw":10}})");
    EXPECT_EQ(anew["type"], "hello");
    EXPECT_EQ(receive(*socket), json::parse(R"({"type":"tuned","request":7})"));
    EXPECT_EQ(receive(*other)["type"], "hello");
    const json bad = ask(*socket, R"({"type":"tune","request":8,"client":"c","stage":"gone","options":{}})");
    EXPECT_EQ(bad, json::parse(R"({"type":"error","request":8,"text":"no stage gone"})"));
    ASSERT_EQ(tunes_.size(), 2u);
    EXPECT_EQ(tunes_[0], R"(c/there/{"rbw":10})");
    for (const char* text : {"", "{", "[]", "7", R"({"type":"tune"})",
                             R"({"type":"tune","request":"x","client":"c","stage":"there","options":{}})",
                             R"({"type":"tune","request":1,"client":2,"stage":"there","options":{}})", "\xff\xfe"}) {
        EXPECT_EQ(ask(*socket, text)["type"], "error") << text;
    }
    EXPECT_EQ(tunes_.size(), 2u);
    EXPECT_EQ(server_->counters().refusedMessages, 8u);
}

TEST_F(LiveServerTest, aCallbackThatThrowsIsAnsweredAndEndsNothingElse) {
    const auto good = connect();
    const std::string full = R"({"type":"tune","request":1,"client":"c","stage":"full","options":{}})";
    EXPECT_EQ(ask(*good, full), json::parse(R"({"type":"error","request":1,"text":"std::bad_alloc"})"));
    canDescribe_ = false;
    const std::string there = R"({"type":"tune","request":2,"client":"c","stage":"there","options":{}})";
    EXPECT_EQ(ask(*good, there)["text"], "no description");
    EXPECT_ANY_THROW(connect());
    EXPECT_TRUE(eventually([&] { return server_->counters().refusedMessages == 1u; }));
    server_->publish("c", "updateDataAsync", "1");
    EXPECT_EQ(receive(*good)["message"], 1);
    server_.reset();  // waits for the places of all browsers
}

TEST_F(LiveServerTest, refusesForeignPagesForeignNamesAndTooManyBrowsers) {
    const std::string elsewhere = "elsewhere.example:" + std::to_string(port_);
    EXPECT_THROW(connect({{"Origin", "http://elsewhere.example"}}), Poco::Net::WebSocketException);
    EXPECT_THROW(connect({{"Origin", "http://" + elsewhere}, {"Host", elsewhere}}), Poco::Net::WebSocketException);
    EXPECT_EQ(server_->counters().refusedConnections, 2u);
    std::unique_ptr<WebSocket> browsers[3];
    for (auto& browser : browsers) {
        browser = connect();
    }
    for (int i = 0; i < 100; ++i) {
        EXPECT_THROW(connect(), Poco::Net::WebSocketException);
    }
    EXPECT_EQ(server_->numBrowsers(), 3u);
    EXPECT_EQ(get("/").first, 200);
    browsers[0].reset();
    EXPECT_TRUE(eventually([&] { return server_->numBrowsers() == 2u; }));
    EXPECT_NO_THROW(connect());
}

TEST_F(LiveServerTest, aMegabyteOfGarbageEndsOnlyItsOwnConnection) {
    const auto good = connect();
    const auto bad = connect();
    const std::string garbage(1 << 20, 'x');
    try {
        bad->sendFrame(garbage.data(), static_cast<int>(garbage.size()));
    } catch (const Poco::Exception&) {
        // the server may have hung up while it was still being sent
    }
    EXPECT_TRUE(eventually([&] { return server_->numBrowsers() == 1u; }));
    EXPECT_EQ(server_->counters().refusedMessages, 1u);
    server_->publish("c", "updateDataAsync", R"({"a":1})");
    const json update = receive(*good);
    EXPECT_EQ(update["message"].dump(), R"({"a":1})");
    EXPECT_EQ(update["sequence"], 1);
    EXPECT_EQ(update["event"], "updateDataAsync");
}

TEST_F(LiveServerTest, aSlowBrowserMissesMessagesAndHoldsNobodyUp) {
    const auto slow = connect();
    const auto quick = connect();
    const std::string text = "\"" + std::string(200000, 'a') + "\"";
    // Until the sockets' buffers take no more of the one who does not read, and hardly further: its connection would
    // time out.
    int messages = 0;
    while (server_->counters().missedMessages < 3 && messages < 1000) {
        server_->publish("c", "updateDataAsync", text);
        EXPECT_EQ(receive(*quick)["sequence"], ++messages);
    }
    // What the slow one reads first lies in the sockets' buffers; behind that comes the newest message alone.
    json last;
    std::uint64_t got = 0;
    while (last.is_null() || last["sequence"] != messages) {
        last = receive(*slow);
        ++got;
    }
    EXPECT_GT(last["missed"], 0);
    EXPECT_EQ(got + last["missed"].get<std::uint64_t>(), static_cast<std::uint64_t>(messages));
}

TEST(LiveServer, saysWhatIsWrongWithAnAddressOrFolder) {
    for (const char* address : {"127.0.0.1", "256.1.1.1"}) {
        EXPECT_THROW(program::LiveServer({address, 0, "/nowhere", 1}, {}), program::UsageError) << address;
    }
    for (const char* address : {"localhost:80", "[::1]:8080"}) {
        EXPECT_EQ(toText(program::readLiveAddress(address)), address);
    }
}

}  // namespace
