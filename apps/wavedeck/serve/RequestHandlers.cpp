#include "RequestHandlers.h"

#include <Poco/Exception.h>
#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/URI.h>

#include <array>
#include <string_view>
#include <utility>

namespace program {

using Poco::Net::HTTPRequestHandler;
using Poco::Net::HTTPResponse;
using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;

namespace {

void answerWith(HTTPServerResponse& response, HTTPResponse::HTTPStatus status) {
    response.setStatusAndReason(status);
    response.setContentType("text/plain");
    const std::string text = response.getReason() + "\n";
    response.sendBuffer(text.data(), text.size());
}

class FileHandler : public HTTPRequestHandler {
public:
    explicit FileHandler(const StaticFiles& files) : files_(files) {}

    void handleRequest(HTTPServerRequest& request, HTTPServerResponse& response) override {
        if (request.getMethod() != "GET" && request.getMethod() != "HEAD") {
            answerWith(response, HTTPResponse::HTTP_METHOD_NOT_ALLOWED);
            return;
        }
        std::string path;
        try {
            path = Poco::URI(request.getURI()).getPath();
        } catch (const Poco::Exception&) {
            answerWith(response, HTTPResponse::HTTP_BAD_REQUEST);
            return;
        }
        const auto file = files_.find(path);
        if (!file) {
            answerWith(response, HTTPResponse::HTTP_NOT_FOUND);
            return;
        }
        response.set("Cache-Control", "no-cache");
        response.set("X-Content-Type-Options", "nosniff");
        response.set("Content-Security-Policy",
                     "default-src 'self'; img-src 'self' data: blob:; style-src 'self' 'unsafe-inline'");
        response.sendFile(file->string(), StaticFiles::mediaType(*file));
    }

private:
    const StaticFiles& files_;
};

class LiveHandler : public HTTPRequestHandler {
public:
    explicit LiveHandler(const RequestHandlers::Live& live) : live_(live) {}

    void handleRequest(HTTPServerRequest& request, HTTPServerResponse& response) override { live_(request, response); }

private:
    const RequestHandlers::Live& live_;
};

}  // namespace

RequestHandlers::RequestHandlers(const std::string& webFolder, Live live) : files_(webFolder), live_(std::move(live)) {}

HTTPRequestHandler* RequestHandlers::createRequestHandler(const HTTPServerRequest& request) {
    if (request.getURI() == "/live") {
        return new LiveHandler(live_);
    }
    return new FileHandler(files_);
}

bool isOwnOrigin(const HTTPServerRequest& request, bool loopback) {
    const std::string& host = request.getHost();
    if (loopback) {
        constexpr std::array ownNames = {"127.0.0.1", "localhost", "[::1]"};
        bool own = false;
        for (const std::string_view name : ownNames) {
            own = own || host == name || (host.starts_with(name) && host.substr(name.size()).starts_with(":"));
        }
        if (!own) {
            return false;
        }
    }
    return !request.has("Origin") || request.get("Origin") == "http://" + host;
}

}  // namespace program
