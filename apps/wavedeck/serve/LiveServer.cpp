#include "LiveServer.h"

#include <Poco/Exception.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerParams.h>
#include <Poco/Net/IPAddress.h>
#include <Poco/Net/NetException.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/ThreadPool.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "Browser.h"
#include "LiveAddress.h"
#include "RequestHandlers.h"
#include "UsageError.h"

namespace program {

namespace {

constexpr std::size_t fileThreads = 8;

Poco::Net::ServerSocket listenOn(const LiveServer::Settings& settings) {
    try {
        const Poco::Net::SocketAddress address(settings.host, settings.port);
        Poco::Net::ServerSocket socket;
        socket.bind(address, true);
        socket.listen(64);
        return socket;
    } catch (const Poco::Exception& wrong) {
        throw UsageError("--serve " + toText(LiveAddress{settings.host, settings.port}) +
                         ": cannot listen: " + wrong.displayText());
    }
}

/// The reply to one text from a browser: what became of its tune.
std::string answerTune(const std::string& text, const LiveServer::Callbacks& callbacks,
                       const std::function<void()>& refused, const std::function<void()>& changed) {
    const auto request = nlohmann::json::parse(text, nullptr, false);
    const auto isText = [&](const char* name) { return request.contains(name) && request[name].is_string(); };
    if (!request.is_object() || !isText("type") || request["type"] != "tune" || !request.contains("request") ||
        !request["request"].is_number_integer() || !isText("client") || !isText("stage") ||
        !request.contains("options") || !request["options"].is_object()) {
        refused();
        return R"({"type":"error","request":null,"text":"not a tune: type, request, client, stage, options expected"})";
    }
    std::string wrong;
    try {
        wrong = callbacks.tune({request["client"], request["stage"], request["options"]});
        if (wrong.empty()) {
            changed();
        }
    } catch (const std::exception& error) {
        wrong = error.what();
    }
    nlohmann::json reply = {{"type", "tuned"}, {"request", request["request"]}};
    if (!wrong.empty()) {
        reply["type"] = "error";
        reply["text"] = wrong;
    }
    return reply.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

struct LiveServer::State {
    State(const Settings& given, Callbacks answers)
        : settings(given),
          callbacks(std::move(answers)),
          socket(listenOn(given)),
          threads(2, static_cast<int>(given.maxBrowsers + fileThreads)) {}

    void live(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response);
    std::shared_ptr<Browser> take(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response);
    void forget(const std::shared_ptr<Browser>& browser);
    void describeAnew();

    /// Gives the place of a connection free, whatever ends it.
    class PlaceInUse {
    public:
        explicit PlaceInUse(State& state) : state_(state) {}
        ~PlaceInUse() {
            const std::lock_guard lock(state_.mutex);
            --state_.places;
            state_.left.notify_all();
        }
        PlaceInUse(const PlaceInUse&) = delete;
        PlaceInUse& operator=(const PlaceInUse&) = delete;

    private:
        State& state_;
    };

    const Settings settings;
    const Callbacks callbacks;
    Poco::Net::ServerSocket socket;
    Poco::ThreadPool threads;
    std::unique_ptr<Poco::Net::HTTPServer> server;

    std::mutex describing;  ///< descriptions must go out in the order in which they were made
    mutable std::mutex mutex;
    std::condition_variable left;
    std::vector<std::shared_ptr<Browser>> browsers;
    std::map<std::string, std::shared_ptr<const LiveMessage>> newest;  ///< by client, for browsers that come later
    std::size_t places = 0;                                            ///< live connections taken or being taken
    std::uint64_t sequence = 0;
    bool stopping = false;
    Counters counters;
};

LiveServer::LiveServer(const Settings& settings, Callbacks callbacks)
    : state_(std::make_unique<State>(settings, std::move(callbacks))) {
    if (!StaticFiles(settings.webFolder).find("/")) {
        throw UsageError("--serve: no page (index.html) in " + settings.webFolder);
    }
    auto* parameters = new Poco::Net::HTTPServerParams;
    parameters->setMaxThreads(static_cast<int>(settings.maxBrowsers + fileThreads));
    parameters->setMaxQueued(256);
    parameters->setTimeout(Poco::Timespan(5, 0));  // for a request to arrive
    parameters->setKeepAliveTimeout(Poco::Timespan(2, 0));
    auto* handlers = new RequestHandlers(
        settings.webFolder, [state = state_.get()](auto& request, auto& response) { state->live(request, response); });
    state_->server = std::make_unique<Poco::Net::HTTPServer>(handlers, state_->threads, state_->socket, parameters);
    state_->server->start();
}

LiveServer::~LiveServer() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->stopping = true;
        for (const auto& browser : state_->browsers) {
            browser->close();
        }
    }
    {
        std::unique_lock lock(state_->mutex);
        state_->left.wait(lock, [this] { return state_->places == 0; });
    }
    state_->server->stopAll(true);
    state_->threads.joinAll();
}

/// Begins a live connection: the browser gets the description and each client's newest message.
std::shared_ptr<Browser> LiveServer::State::take(Poco::Net::HTTPServerRequest& request,
                                                 Poco::Net::HTTPServerResponse& response) {
    const Poco::Net::WebSocket socketOfBrowser(request, response);
    auto browser = std::make_shared<Browser>(socketOfBrowser);
    const std::lock_guard ordered(describing);
    browser->describe(std::make_shared<const std::string>(callbacks.hello()));
    const std::lock_guard lock(mutex);
    for (const auto& [client, message] : newest) {
        browser->offer(message);
    }
    if (stopping) {
        browser->close();
    }
    browsers.push_back(browser);
    ++counters.connections;
    return browser;
}

void LiveServer::State::describeAnew() {
    const std::lock_guard ordered(describing);
    const auto hello = std::make_shared<const std::string>(callbacks.hello());
    const std::lock_guard lock(mutex);
    for (const auto& browser : browsers) {
        browser->describe(hello);
    }
}

void LiveServer::State::forget(const std::shared_ptr<Browser>& browser) {
    const std::lock_guard lock(mutex);
    counters.missedMessages += browser->missed();
    browsers.erase(std::remove(browsers.begin(), browsers.end(), browser), browsers.end());
}

void LiveServer::State::live(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response) {
    const bool loopback = socket.address().host().isLoopback();
    {
        const std::lock_guard lock(mutex);
        const bool own = isOwnOrigin(request, loopback);
        if (!own || places >= settings.maxBrowsers || stopping) {
            ++counters.refusedConnections;
            response.setStatusAndReason(own ? Poco::Net::HTTPResponse::HTTP_SERVICE_UNAVAILABLE
                                            : Poco::Net::HTTPResponse::HTTP_FORBIDDEN);
            response.setContentLength(0);
            response.send();
            return;
        }
        ++places;
    }
    const auto refused = [this] {
        const std::lock_guard lock(mutex);
        ++counters.refusedMessages;
    };
    const PlaceInUse place(*this);
    std::shared_ptr<Browser> browser;
    try {
        browser = take(request, response);
        browser->run(
            [&](const std::string& text) { return answerTune(text, callbacks, refused, [this] { describeAnew(); }); },
            refused);
    } catch (const std::exception&) {
        refused();  // not a WebSocket handshake, or there is no memory or no thread for one more
        if (!response.sent()) {
            response.setStatusAndReason(Poco::Net::HTTPResponse::HTTP_BAD_REQUEST);
            response.setContentLength(0);
            response.send();
        }
    }
    if (browser) {
        forget(browser);
    }
}

void LiveServer::publish(const std::string& client, const std::string& event, const std::string& message,
                         const UpdateCost& cost) {
    const std::lock_guard lock(state_->mutex);
    ++state_->sequence;
    const auto shared =
        std::make_shared<const LiveMessage>(LiveMessage{client, event, message, state_->sequence, cost});
    state_->newest[client] = shared;
    for (const auto& browser : state_->browsers) {
        browser->offer(shared);
    }
}

void LiveServer::describeAnew() {
    state_->describeAnew();
}

std::string LiveServer::address() const {
    return "http://" + toText(LiveAddress{state_->settings.host, state_->socket.address().port()}) + "/";
}

std::size_t LiveServer::numBrowsers() const {
    const std::lock_guard lock(state_->mutex);
    return state_->browsers.size();
}

LiveServer::Counters LiveServer::counters() const {
    const std::lock_guard lock(state_->mutex);
    Counters counters = state_->counters;
    for (const auto& browser : state_->browsers) {
        counters.missedMessages += browser->missed();
    }
    return counters;
}

}  // namespace program
