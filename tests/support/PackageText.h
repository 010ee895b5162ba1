#pragma once

#include <Poco/JSON/Object.h>

#include <sstream>
#include <string>

namespace testsupport {

/// What a stage sends to its client, as text with its names in alphabetical order.
inline std::string textOf(const Poco::JSON::Object::Ptr& package) {
    std::ostringstream stream;
    package->stringify(stream);
    return stream.str();
}

}  // namespace testsupport
