#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// JSON of a script's results, built as text: the same values give the same bytes on every machine.
namespace program {

/// A number with 17 significant digits, so that it reads back the same; NaN and infinities as the texts "nan", "inf"
/// and
/// "-inf". The sign of a NaN, which the processor chooses, does not show.
std::string jsonNumber(double value);

/// A text in quotes; what JSON does not allow in a text is escaped. Bytes that are no UTF-8 pass.
std::string jsonText(std::string_view text);

/// A list of values that are JSON already.
std::string jsonList(const std::vector<std::string>& values);

/// An object of members whose values are JSON already, in the order given.
std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members);

// The JSON of a value by its type.

inline std::string toJson(double value) {
    return jsonNumber(value);
}
inline std::string toJson(bool value) {
    return value ? "true" : "false";
}
inline std::string toJson(int value) {
    return std::to_string(value);
}
inline std::string toJson(long value) {
    return std::to_string(value);
}
inline std::string toJson(unsigned value) {
    return std::to_string(value);
}
inline std::string toJson(unsigned long value) {
    return std::to_string(value);
}
inline std::string toJson(const std::string& value) {
    return jsonText(value);
}

template <typename Element>
std::string toJson(const std::vector<Element>& values) {
    std::vector<std::string> list;
    list.reserve(values.size());
    for (const auto& value : values) {
        list.push_back(toJson(static_cast<const Element&>(value)));
    }
    return jsonList(list);
}

}  // namespace program
