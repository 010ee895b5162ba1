#pragma once

#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>

#include <functional>
#include <string>

#include "StaticFiles.h"

namespace program {

/// Chooses who answers a request: the live connection for "/live", a static file for any other path.
class RequestHandlers : public Poco::Net::HTTPRequestHandlerFactory {
public:
    using Live = std::function<void(Poco::Net::HTTPServerRequest&, Poco::Net::HTTPServerResponse&)>;

    RequestHandlers(const std::string& webFolder, Live live);

    Poco::Net::HTTPRequestHandler* createRequestHandler(const Poco::Net::HTTPServerRequest& request) override;

private:
    StaticFiles files_;
    Live live_;
};

/// Whether a live connection may be taken: from a page of this server itself, or from no page at all.
/// loopback  the server listens on this machine only: then the name that the caller used must be one of this machine,
///           so that a foreign name that was made to lead here does not pass
bool isOwnOrigin(const Poco::Net::HTTPServerRequest& request, bool loopback);

}  // namespace program
