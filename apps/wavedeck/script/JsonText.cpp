#include "JsonText.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "TextLists.h"

namespace program {

std::string jsonNumber(double value) {
    if (std::isnan(value)) {
        return "\"nan\"";
    }
    if (std::isinf(value)) {
        return value > 0.0 ? "\"inf\"" : "\"-inf\"";
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", value);
    return text.data();
}

std::string jsonText(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            std::array<char, 8> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(c));
            quoted += escaped.data();
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

std::string jsonList(const std::vector<std::string>& values) {
    return '[' + join(values, ",") + ']';
}

std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members) {
    std::vector<std::string> parts;
    parts.reserve(members.size());
    for (const auto& [name, value] : members) {
        parts.push_back(jsonText(name) + ':' + value);
    }
    return '{' + join(parts, ",") + '}';
}

}  // namespace program
