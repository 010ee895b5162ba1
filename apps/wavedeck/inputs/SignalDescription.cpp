#include "SignalDescription.h"

#include <algorithm>
#include <cmath>

#include "EngineeringNumber.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {

SignalDescription::SignalDescription(std::string_view text) {
    const auto question = text.find('?');
    name_ = text.substr(0, question);
    if (question == std::string_view::npos) {
        return;
    }
    for (const auto& pair : split(text.substr(question + 1), '&')) {
        const auto equals = pair.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw UsageError("gen:" + name_ + ": `" + pair + "` is not of the form key=value");
        }
        if (!given_.emplace(pair.substr(0, equals), pair.substr(equals + 1)).second) {
            throw UsageError("gen:" + name_ + ": the key `" + pair.substr(0, equals) + "` is given twice");
        }
    }
}

void SignalDescription::accept(std::span<const SignalKey> keys) {
    for (const auto& key : keys) {
        const auto given = given_.find(key.name);
        const auto text = given == given_.end() ? std::string(key.fallback) : given->second;
        auto& values = values_[std::string(key.name)];
        for (const auto& part : split(text, ',')) {
            const auto value = parseNumber(part);
            if (!value) {
                fail(key.name, "`" + part + "` is not a number (suffixes k M G m u n, no unit)");
            }
            if (!(*value >= key.smallest && *value <= key.largest)) {
                fail(key.name, part + " is not within " + formatQuantity(key.smallest, "") + " to " +
                                   formatQuantity(key.largest, ""));
            }
            values.push_back(*value);
        }
    }
}

void SignalDescription::refuseUnknownKeys() const {
    for (const auto& [key, text] : given_) {
        if (values_.contains(key) || std::find(words_.begin(), words_.end(), key) != words_.end()) {
            continue;
        }
        auto known = words_;
        for (const auto& entry : values_) {
            known.push_back(entry.first);
        }
        std::sort(known.begin(), known.end());
        throw UsageError("gen:" + name_ + ": no key `" + key + "`; it has " + join(known, " "));
    }
}

double SignalDescription::number(std::string_view key) const {
    const auto& values = list(key);
    if (values.size() != 1) {
        fail(key, "takes one value");
    }
    return values.front();
}

double SignalDescription::wholeNumber(std::string_view key) const {
    const double value = number(key);
    if (value != std::trunc(value)) {
        fail(key, "takes a whole number");
    }
    return value;
}

const std::vector<double>& SignalDescription::list(std::string_view key) const {
    return values_.find(key)->second;
}

std::string SignalDescription::word(std::string_view key, std::span<const std::string_view> allowed) {
    words_.emplace_back(key);
    const auto given = given_.find(key);
    auto value = given == given_.end() ? std::string(allowed.front()) : given->second;
    if (std::find(allowed.begin(), allowed.end(), value) == allowed.end()) {
        fail(key, "`" + value + "` is none of " + join(allowed, " "));
    }
    return value;
}

void SignalDescription::fail(std::string_view key, const std::string& what) const {
    throw UsageError("gen:" + name_ + ": " + std::string(key) + ": " + what);
}

}  // namespace program
