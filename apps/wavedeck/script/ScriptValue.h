#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace program {

/// A value of a script, with the line on which it stands: a JSON value that can say where it is when it is not what was
/// expected. All reading functions throw UsageError "line N: expected ..., found ...".
class ScriptValue {
public:
    using List = std::vector<ScriptValue>;
    using Members = std::vector<std::pair<std::string, ScriptValue>>;  ///< in the order written

    using Held = std::variant<std::monostate, bool, double, std::string, List, Members>;

    ScriptValue() = default;
    ScriptValue(Held held, int line);

    int line() const { return line_; }
    bool isNull() const { return std::holds_alternative<std::monostate>(held_); }
    bool isList() const { return std::holds_alternative<List>(held_); }
    bool isObject() const { return std::holds_alternative<Members>(held_); }
    bool isText() const { return std::holds_alternative<std::string>(held_); }

    // Each takes what was expected, for the error.

    /// A number; the texts "nan", "inf", "-inf" stand for themselves.
    double number(std::string_view expected = "a number") const;
    /// A whole number within the limits.
    long long wholeNumber(long long smallest, long long largest, std::string_view expected = "a whole number") const;
    bool logical(std::string_view expected = "true or false") const;
    const std::string& text(std::string_view expected = "a text") const;
    const List& list(std::string_view expected = "a list") const;
    const Members& members(std::string_view expected = "an object") const;

    /// The member of that name, null if there is none.
    const ScriptValue* find(std::string_view name) const;
    /// The member of that name.
    const ScriptValue& require(std::string_view name) const;
    /// Refuses members whose names are not among those allowed.
    void allowOnly(std::span<const std::string_view> names) const;

    /// Throws UsageError for this value.
    [[noreturn]] void refuse(std::string_view expected) const;

private:
    friend class ScriptBuilder;

    std::string describe() const;

    Held held_;
    int line_ = 0;
};

/// Reads a script's text. Throws UsageError "line N: ..." where it is no JSON, and for a member that is given twice.
ScriptValue parseScript(const std::string& text);

}  // namespace program
