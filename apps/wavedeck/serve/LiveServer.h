#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Browser.h"

namespace program {

/// What a browser asks a stage to change.
struct TuneRequest {
    std::string client;
    std::string stage;
    nlohmann::json options;  ///< object: option name to value
};

/// Serves the display page and hands the newest messages to every browser that is connected.
///
/// Each browser has a slot for each client that holds only the newest message: a slow browser misses messages, which
/// are counted for it, and never holds anybody up. A browser that comes later begins with the newest message of each
/// client. Tunes come in on a browser's own thread.
class LiveServer {
public:
    struct Settings {
        std::string host = "127.0.0.1";
        std::uint16_t port = 0;        ///< 0: any free port
        std::string webFolder;         ///< folder of the page's static files
        std::size_t maxBrowsers = 16;  ///< live connections at once; more are refused
    };

    /// What the program answers with.
    struct Callbacks {
        /// The description of all clients, stages and options, as JSON text: a browser gets it first, and all get it
        /// anew when a tune has changed something. Called on any thread, never on two at once.
        std::function<std::string()> hello;
        /// Applies a tune; returns the text of what was wrong, or nothing.
        std::function<std::string(const TuneRequest&)> tune;
    };

    /// What was refused or ignored since the start.
    struct Counters {
        std::uint64_t connections = 0;         ///< live connections taken
        std::uint64_t refusedConnections = 0;  ///< foreign origin, foreign host name, or too many
        std::uint64_t refusedMessages = 0;     ///< malformed or too long
        std::uint64_t missedMessages = 0;      ///< overwritten by newer ones before they were sent
    };

    /// Begins to serve. Throws UsageError if the address cannot be listened on or the folder has no page.
    LiveServer(const Settings& settings, Callbacks callbacks);
    /// Stops serving; connections are closed.
    ~LiveServer();
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;

    /// Hands every browser a client's newest message. Returns at once.
    /// event    name under which the message goes out
    /// message  JSON text
    /// cost     what it took to make; goes along
    void publish(const std::string& client, const std::string& event, const std::string& message,
                 const UpdateCost& cost = {});

    /// Hands every browser a fresh description of the clients; a tune that was taken does so by itself.
    void describeAnew();

    /// Where a browser finds the page.
    std::string address() const;
    std::size_t numBrowsers() const;
    Counters counters() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace program
