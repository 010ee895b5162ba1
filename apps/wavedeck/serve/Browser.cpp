#include "Browser.h"

#include <Poco/Net/NetException.h>
#include <Poco/Timespan.h>

#include <chrono>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

namespace program {

namespace {

using Poco::Net::WebSocket;

constexpr int longestMessage = 64 * 1024;
constexpr std::size_t mostReplies = 64;
// Long: a frame that was cut by a short time-out would leave the stream in pieces. Who does not take anything for so
// long is dropped.
constexpr int sendSeconds = 10;
constexpr int pollMicroseconds = 200000;

double millisecondsSinceEpoch() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(now).count();
}

}  // namespace

Browser::Browser(const WebSocket& socket) : socket_(socket), received_(longestMessage, '\0') {
    socket_.setSendTimeout(Poco::Timespan(sendSeconds, 0));
    socket_.setReceiveTimeout(Poco::Timespan(sendSeconds, 0));
    socket_.setMaxPayloadSize(longestMessage);
    socket_.setNoDelay(true);
}

void Browser::describe(std::shared_ptr<const std::string> hello) {
    {
        const std::lock_guard lock(mutex_);
        hello_ = std::move(hello);
    }
    changed_.notify_one();
}

void Browser::offer(std::shared_ptr<const LiveMessage> message) {
    {
        const std::lock_guard lock(mutex_);
        auto& slot = newest_[message->client];
        if (slot) {
            ++missed_;
        }
        slot = std::move(message);
    }
    changed_.notify_one();
}

void Browser::close() {
    {
        const std::lock_guard lock(mutex_);
        closing_ = true;
    }
    changed_.notify_all();
}

void Browser::reply(std::string text) {
    {
        const std::lock_guard lock(mutex_);
        if (replies_.size() >= mostReplies) {
            closing_ = true;  // asks without ever listening
        } else {
            replies_.push_back(std::move(text));
        }
    }
    changed_.notify_one();
}

void Browser::run(const Answer& answer, const std::function<void()>& refused) {
    std::thread writer([this] { write(); });
    read(answer, refused);
    close();
    writer.join();
    // Ended here, behind the writer, and not by whoever lets go of the socket last: that may be the thread that
    // accepted the connection.
    socket_.close();
}

void Browser::sendText(const std::string& text) {
    const std::lock_guard lock(sending_);
    socket_.sendFrame(text.data(), static_cast<int>(text.size()), WebSocket::FRAME_TEXT);
}

std::string Browser::envelope(const LiveMessage& message) const {
    std::string text = R"({"type":"update","client":")" + message.client + R"(","event":")" + message.event +
                       R"(","sequence":)" + std::to_string(message.sequence) + R"(,"missed":)" +
                       std::to_string(missed_.load()) + R"(,"building":)" + std::to_string(message.cost.building) +
                       R"(,"writing":)" + std::to_string(message.cost.writing) + R"(,"sent":)" +
                       std::to_string(millisecondsSinceEpoch()) + R"(,"message":)";
    text += message.text;
    text += '}';
    return text;
}

void Browser::write() {
    try {
        while (true) {
            std::shared_ptr<const std::string> hello;
            std::deque<std::string> replies;
            std::vector<std::shared_ptr<const LiveMessage>> messages;
            {
                std::unique_lock lock(mutex_);
                changed_.wait(lock, [this] { return closing_ || hello_ || !replies_.empty() || !newest_.empty(); });
                if (closing_) {
                    break;
                }
                hello = std::exchange(hello_, nullptr);
                replies.swap(replies_);
                for (auto& [client, message] : newest_) {
                    messages.push_back(std::move(message));
                }
                newest_.clear();
            }
            if (hello) {
                sendText(*hello);
            }
            for (const std::string& text : replies) {
                sendText(text);
            }
            for (const auto& message : messages) {
                sendText(envelope(*message));
            }
        }
        const std::lock_guard lock(sending_);
        socket_.shutdown();
    } catch (const std::exception&) {
        // Gone, too slow to be worth keeping, or no memory for its messages: the reader finds the connection closed.
        close();
    }
}

void Browser::read(const Answer& answer, const std::function<void()>& refused) {
    try {
        while (true) {
            {
                const std::lock_guard lock(mutex_);
                if (closing_) {
                    return;
                }
            }
            if (socket_.poll(Poco::Timespan(pollMicroseconds), Poco::Net::Socket::SELECT_READ) &&
                !receive(answer, refused)) {
                return;
            }
        }
    } catch (const Poco::Net::WebSocketException&) {
        refused();  // not the protocol, or a message that is too long
    } catch (const std::exception&) {
        return;  // the connection is gone, or there is no memory to answer it
    }
}

bool Browser::receive(const Answer& answer, const std::function<void()>& refused) {
    int flags = 0;
    const int length = socket_.receiveFrame(received_.data(), longestMessage, flags);
    const int kind = flags & WebSocket::FRAME_OP_BITMASK;
    if ((length <= 0 && flags == 0) || kind == WebSocket::FRAME_OP_CLOSE) {
        return false;
    }
    if (kind == WebSocket::FRAME_OP_PING) {
        const std::lock_guard lock(sending_);
        socket_.sendFrame(received_.data(), length,
                          static_cast<int>(WebSocket::FRAME_FLAG_FIN) | static_cast<int>(WebSocket::FRAME_OP_PONG));
        return true;
    }
    if (kind == WebSocket::FRAME_OP_PONG) {
        return true;
    }
    if (kind != WebSocket::FRAME_OP_TEXT || (flags & WebSocket::FRAME_FLAG_FIN) == 0) {
        refused();
        return false;  // nothing that the page sends is binary or in pieces
    }
    if (std::string text = answer(std::string(received_.data(), static_cast<std::size_t>(length))); !text.empty()) {
        reply(std::move(text));
    }
    return true;
}

}  // namespace program
