#include "OptionValues.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "EngineeringNumber.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

using dspwavedecks::catalogue::Content;
using dspwavedecks::catalogue::Option;
using nlohmann::json;

json oneValue(const Option& option, const std::string& text) {
    if (option.content == Content::TrueFalse) {
        return text == "true";
    }
    if (option.content == Content::Number || option.content == Content::WholeNumber ||
        option.content == Content::NumberText) {
        if (text.empty()) {
            return nullptr;
        }
        const auto number = parseNumber(text);
        return number && std::isfinite(*number) ? json(*number) : json(text);
    }
    return text;
}

/// A single value as text; nothing if it is of another kind than the option's values.
std::optional<std::string> oneText(const Option& option, const json& value) {
    const bool isNumber = option.content == Content::Number || option.content == Content::WholeNumber ||
                          option.content == Content::NumberText || option.content == Content::NumbersText;
    if (value.is_number() && isNumber) {
        return value.dump();
    }
    if (value.is_boolean() && option.content == Content::TrueFalse) {
        return value.get<bool>() ? "true" : "false";
    }
    // A number may come as text where it may be infinite or carries a suffix.
    if (value.is_string() && option.content != Content::TrueFalse &&
        (!isNumber || option.content == Content::NumbersText || parseNumber(value.get<std::string>()))) {
        return value.get<std::string>();
    }
    return std::nullopt;
}

template <typename T>
std::vector<T> allAs(const json& list) {
    std::vector<T> values;
    for (const auto& value : list) {
        values.push_back(value.get<T>());
    }
    return values;
}

}  // namespace

json valueFromText(const Option& option, const std::string& text) {
    if (!isList(option.kind)) {
        return oneValue(option, text);
    }
    json list = json::array();
    if (!text.empty()) {
        for (const auto& part : split(text, ',')) {
            list.push_back(oneValue(option, part));
        }
    }
    return list;
}

std::optional<std::string> textFromValue(const Option& option, const json& value) {
    if (!value.is_array() || !(isList(option.kind) || option.content == Content::NumbersText)) {
        // A list may be typed as one text with commas.
        if (isList(option.kind) && value.is_string()) {
            return value.get<std::string>();
        }
        return oneText(option, value);
    }
    std::vector<std::string> parts;
    for (const auto& element : value) {
        const auto part = oneText(option, element);
        if (!part) {
            return std::nullopt;
        }
        parts.push_back(*part);
    }
    return join(parts, ",");
}

void addAsItStands(const std::string& name, const json& value, streamplug::interfaces::device::PropertyList& list) {
    const auto isNumber = [](const json& element) { return element.is_number(); };
    const auto isLogical = [](const json& element) { return element.is_boolean(); };
    if (value.is_number()) {
        list.addDouble(name, value.get<double>());
    } else if (value.is_boolean()) {
        list.addLogical(name, value.get<bool>());
    } else if (value.is_string()) {
        list.addChar(name, value.get<std::string>());
    } else if (value.is_array() && std::all_of(value.begin(), value.end(), isNumber)) {
        list.addDoubles(name, allAs<double>(value));
    } else if (value.is_array() && std::all_of(value.begin(), value.end(), isLogical)) {
        list.addLogicals(name, allAs<bool>(value));
    } else {
        throw UsageError(name + ": neither a number, a logical, a text nor a list of one kind");
    }
}

}  // namespace program
