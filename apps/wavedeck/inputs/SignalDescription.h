#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace program {

/// One key of a built-in test signal, as it may be given behind the question mark.
struct SignalKey {
    std::string_view name;
    std::string_view fallback;  ///< value when the key is not given
    double smallest;            ///< values below are refused
    double largest;             ///< values above are refused
};

/// The text `NAME?key=value&...` of a test signal taken apart: values by key, checked against the keys that the signal
/// knows.
class SignalDescription {
public:
    /// text  what stands behind "gen:"
    explicit SignalDescription(std::string_view text);

    const std::string& name() const { return name_; }

    /// Lets the keys of a table be asked for. Throws UsageError for a value out of a key's range or no number.
    void accept(std::span<const SignalKey> keys);

    /// Throws UsageError when a key was given that no table knows.
    void refuseUnknownKeys() const;

    /// The one value of a key.
    double number(std::string_view key) const;

    /// The one value of a key that must be a whole number.
    double wholeNumber(std::string_view key) const;

    /// The values of a key that takes a list.
    const std::vector<double>& list(std::string_view key) const;

    /// A key whose value is one of several words; not among the tables' keys.
    std::string word(std::string_view key, std::span<const std::string_view> allowed);

private:
    [[noreturn]] void fail(std::string_view key, const std::string& what) const;

    std::string name_;
    std::map<std::string, std::string, std::less<>> given_;
    std::map<std::string, std::vector<double>, std::less<>> values_;
    std::vector<std::string> words_;
};

}  // namespace program
