#pragma once

#include <Poco/Net/WebSocket.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace program {

/// What an update took before it was sent, ms.
struct UpdateCost {
    double building = 0.0;  ///< making the message
    double writing = 0.0;   ///< its text
};

/// One update on its way to the browsers; shared by all of them.
struct LiveMessage {
    std::string client;
    std::string event;
    std::string text;            ///< JSON
    std::uint64_t sequence = 0;  ///< counts the messages of all clients
    UpdateCost cost;
};

/// One live connection: a writer thread that sends replies and the newest messages, and the caller's thread that reads.
class Browser {
public:
    /// What a received text leads to; returns the reply, or an empty text for none.
    using Answer = std::function<std::string(const std::string&)>;

    explicit Browser(const Poco::Net::WebSocket& socket);

    /// Puts a description of the clients in its slot; what lies there unsent is replaced. It goes out before all else.
    void describe(std::shared_ptr<const std::string> hello);

    /// Puts a message in its client's slot; an unsent one there is lost and counted.
    void offer(std::shared_ptr<const LiveMessage> message);

    /// Serves the connection until it ends: reads here, writes on a thread of its own.
    /// refused  told of every message that could not be taken
    void run(const Answer& answer, const std::function<void()>& refused);

    /// Ends the connection from any thread.
    void close();

    std::uint64_t missed() const { return missed_; }

private:
    void write();
    void read(const Answer& answer, const std::function<void()>& refused);
    bool receive(const Answer& answer, const std::function<void()>& refused);
    void reply(std::string text);
    void sendText(const std::string& text);
    std::string envelope(const LiveMessage& message) const;

    Poco::Net::WebSocket socket_;
    std::mutex sending_;  ///< frames from the two threads must not mix

    std::mutex mutex_;
    std::condition_variable changed_;
    std::shared_ptr<const std::string> hello_;
    std::deque<std::string> replies_;
    std::map<std::string, std::shared_ptr<const LiveMessage>> newest_;  ///< by client, unsent
    bool closing_ = false;
    std::atomic<std::uint64_t> missed_{0};

    std::string received_;  ///< scratch of the reading thread
};

}  // namespace program
