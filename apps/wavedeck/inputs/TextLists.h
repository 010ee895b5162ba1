#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace program {

/// The parts of a text between separators; an empty text has one empty part.
std::vector<std::string> split(std::string_view text, char separator);

/// The parts one behind the other with a separator between them. Parts: anything that a string_view can be made of.
template <typename Parts>
std::string join(const Parts& parts, std::string_view separator) {
    std::string text;
    bool first = true;
    for (const auto& part : parts) {
        if (!first) {
            text += separator;
        }
        text += part;
        first = false;
    }
    return text;
}

}  // namespace program
