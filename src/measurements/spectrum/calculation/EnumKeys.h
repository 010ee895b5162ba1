#pragma once

#include <stdexcept>
#include <string>
#include <unordered_map>

namespace dspwavedecks {

/// Option words of one enumeration and the values they stand for.
template <class Enum>
using EnumKeys = std::unordered_map<std::string, Enum>;

/// The value that stands for a key; std::out_of_range with the text "unordered_map::at: key not found" if none does.
/// Other than std::unordered_map::at, the text is the same with every standard library.
template <class Enum>
Enum enumAt(const EnumKeys<Enum>& keys, const std::string& key) {
    const auto found = keys.find(key);
    if (found == keys.end()) {
        throw std::out_of_range("unordered_map::at: key not found");
    }
    return found->second;
}

}  // namespace dspwavedecks
