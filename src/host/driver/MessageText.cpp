#include "MessageText.h"

#include <Poco/JSON/Stringifier.h>
#include <Poco/JSONString.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <typeinfo>

#include "NumberText.h"

namespace wavedeck::driver {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

/// Characters that no JSON writer escapes.
bool isPlain(char c) {
    return c >= 0x20 && c < 0x7f && c != '"' && c != '\\' && c != '/';
}

template <typename T>
void appendInteger(std::string& text, T value) {
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace

const std::string& MessageText::write(const Object& message) {
    text_.clear();
    rendered_.clear();
    writeObject(message);
    return text_;
}

void MessageText::writeObject(const Object& object) {
    text_ += '{';
    bool isFirst = true;
    for (const std::string& name : object.getNames()) {  // in the object's own order, sorted or as inserted
        if (!isFirst) {
            text_ += ',';
        }
        isFirst = false;
        writeText(name);
        text_ += ':';
        writeValue(object.get(name));
    }
    text_ += '}';
}

void MessageText::writeArray(const Array& array) {
    // Numbers are collected and appended many at a time.
    char numbers[1024];
    char* end = numbers;
    const auto append = [&] {
        text_.append(numbers, end);
        end = numbers;
    };
    text_ += '[';
    bool isFirst = true;
    for (const Var& value : array) {
        if (numbers + sizeof numbers - end < static_cast<std::ptrdiff_t>(longestNumberText + 1)) {
            append();
        }
        if (!isFirst) {
            *end++ = ',';
        }
        isFirst = false;
        if (!value.isEmpty() && value.type() == typeid(double)) {
            end = writeNumber(value.extract<double>(), end);
        } else {
            append();
            writeValue(value);
        }
    }
    append();
    text_ += ']';
}

void MessageText::writeShared(const Array::Ptr& array) {
    const auto known = std::find_if(rendered_.begin(), rendered_.end(),
                                    [&](const Rendered& rendered) { return rendered.array == array.get(); });
    if (known != rendered_.end()) {
        text_.append(text_, known->begin, known->size);
        return;
    }
    const std::size_t begin = text_.size();
    writeArray(*array);
    if (array.referenceCount() > 1) {
        rendered_.push_back({array.get(), begin, text_.size() - begin});
    }
}

void MessageText::writeValue(const Var& value) {
    if (value.isEmpty()) {
        text_ += "null";
        return;
    }
    const std::type_info& type = value.type();
    if (type == typeid(double)) {
        char number[longestNumberText];
        text_.append(number, writeNumber(value.extract<double>(), number));
    } else if (type == typeid(std::string)) {
        writeText(value.extract<std::string>());
    } else if (type == typeid(int)) {
        appendInteger(text_, value.extract<int>());
    } else if (type == typeid(Object::Ptr)) {
        writeObject(*value.extract<Object::Ptr>());
    } else if (type == typeid(Array::Ptr)) {
        writeShared(value.extract<Array::Ptr>());
    } else if (type == typeid(Object)) {
        writeObject(value.extract<Object>());
    } else if (type == typeid(Array)) {
        writeArray(value.extract<Array>());
    } else {
        writeOther(value);
    }
}

void MessageText::writeText(const std::string& text) {
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        text_ += '"';
        text_ += text;
        text_ += '"';
    } else {
        text_ += Poco::toJSON(text, Poco::JSON_WRAP_STRINGS);
    }
}

void MessageText::writeOther(const Var& value) {
    if (value.type() == typeid(float) && !std::isfinite(value.extract<float>())) {
        text_ += "null";
        return;
    }
    std::ostringstream stream;
    Poco::JSON::Stringifier::stringify(value, stream);
    text_ += stream.str();
}

}  // namespace wavedeck::driver
