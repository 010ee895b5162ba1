#include "ScriptValue.h"

#include <algorithm>
#include <cmath>

#include "EngineeringNumber.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {

ScriptValue::ScriptValue(Held held, int line) : held_(std::move(held)), line_(line) {}

std::string ScriptValue::describe() const {
    struct Describe {
        std::string operator()(std::monostate) const { return "null"; }
        std::string operator()(bool value) const { return value ? "true" : "false"; }
        std::string operator()(double value) const { return formatQuantity(value, "", 17); }
        std::string operator()(const std::string& value) const { return "the text \"" + value + '"'; }
        std::string operator()(const List&) const { return "a list"; }
        std::string operator()(const Members&) const { return "an object"; }
    };
    return std::visit(Describe{}, held_);
}

void ScriptValue::refuse(std::string_view expected) const {
    throw UsageError("line " + std::to_string(line_) + ": expected " + std::string(expected) + ", found " + describe());
}

double ScriptValue::number(std::string_view expected) const {
    if (const auto* value = std::get_if<double>(&held_)) {
        return *value;
    }
    if (const auto* value = std::get_if<std::string>(&held_)) {
        if (*value == "nan" || *value == "inf" || *value == "-inf") {
            return *parseNumber(*value);
        }
    }
    refuse(expected);
}

long long ScriptValue::wholeNumber(long long smallest, long long largest, std::string_view expected) const {
    const auto* value = std::get_if<double>(&held_);
    if (value == nullptr || *value != std::trunc(*value) || !(*value >= static_cast<double>(smallest)) ||
        !(*value <= static_cast<double>(largest))) {
        refuse(expected);
    }
    return static_cast<long long>(*value);
}

bool ScriptValue::logical(std::string_view expected) const {
    const auto* value = std::get_if<bool>(&held_);
    return value != nullptr ? *value : (refuse(expected), false);
}

const std::string& ScriptValue::text(std::string_view expected) const {
    const auto* value = std::get_if<std::string>(&held_);
    if (value == nullptr) {
        refuse(expected);
    }
    return *value;
}

const ScriptValue::List& ScriptValue::list(std::string_view expected) const {
    const auto* value = std::get_if<List>(&held_);
    if (value == nullptr) {
        refuse(expected);
    }
    return *value;
}

const ScriptValue::Members& ScriptValue::members(std::string_view expected) const {
    const auto* value = std::get_if<Members>(&held_);
    if (value == nullptr) {
        refuse(expected);
    }
    return *value;
}

const ScriptValue* ScriptValue::find(std::string_view name) const {
    const auto& all = members();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& member) { return member.first == name; });
    return found == all.end() ? nullptr : &found->second;
}

const ScriptValue& ScriptValue::require(std::string_view name) const {
    const auto* found = find(name);
    if (found == nullptr) {
        throw UsageError("line " + std::to_string(line_) + ": expected a member \"" + std::string(name) + '"');
    }
    return *found;
}

void ScriptValue::allowOnly(std::span<const std::string_view> names) const {
    for (const auto& [name, value] : members()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            throw UsageError("line " + std::to_string(value.line()) + ": expected one of the members " +
                             join(names, ", ") + ", found \"" + name + '"');
        }
    }
}

}  // namespace program
