#pragma once

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <cstddef>
#include <string>
#include <vector>

#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// Turns messages into JSON text, without indentation: byte for byte what Poco's stringifier writes, but null where
/// that would write a bare nan or inf. An array that stands in several places of a message, such as the times that a
/// signal's channels share, is rendered once. The text's memory is used again from message to message.
class WAVEDECK_API MessageText {
public:
    /// The text of a message. Valid until the next call.
    const std::string& write(const Poco::JSON::Object& message);

private:
    /// Where the text of an array stands.
    struct Rendered {
        const Poco::JSON::Array* array;
        std::size_t begin;
        std::size_t size;
    };

    void writeObject(const Poco::JSON::Object& object);
    void writeArray(const Poco::JSON::Array& array);
    void writeShared(const Poco::JSON::Array::Ptr& array);
    void writeValue(const Poco::Dynamic::Var& value);
    void writeText(const std::string& text);
    void writeOther(const Poco::Dynamic::Var& value);

    // state
    std::string text_;

    // scratch
    std::vector<Rendered> rendered_;  ///< of the message in hand
};

}  // namespace wavedeck::driver
