#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace dspwavedecks::catalogue {

/// The array in which the value of an option arrives; it decides the reader.
enum class Kind {
    Double,       ///< one double
    Int,          ///< one 32-bit integer
    Logical,      ///< one logical
    Text,         ///< a char array or one string, ASCII
    UnicodeText,  ///< a char array or one string, any code units
    Doubles,      ///< doubles, any number
    Ints,         ///< 32-bit integers, any number
    Logicals,     ///< logicals, any number
    Texts,        ///< strings, or a cell array of char arrays
    DoubleOrInt,  ///< one double or one 32-bit integer
};

/// What a person gives: how the text of a value is to be read and judged, whatever array carries it.
enum class Content {
    Number,       ///< a number
    WholeNumber,  ///< a number without a fraction
    NumberText,   ///< a number that travels as text, since it may be Inf or -Inf
    NumbersText,  ///< numbers with commas between them that travel as one text
    TrueFalse,    ///< true or false
    Word,         ///< one of the option's words
    FreeText,     ///< any text
};

/// The actions that read an option, as a set.
enum class When : unsigned { Setup = 1, Tune = 2, Both = 3, SizeChange = 4, Rollback = 8, Always = 15 };

constexpr When operator|(When left, When right) {
    return static_cast<When>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}

/// True when the two sets have an action in common.
constexpr bool intersects(When left, When right) {
    return (static_cast<unsigned>(left) & static_cast<unsigned>(right)) != 0;
}

/// Who gives the value: a person, or the host, which knows it of each client.
enum class Giver { Person, Host };

/// A word that an option allows, with its value where the word stands for a numbered choice (-1: it has no number).
struct Word {
    std::string_view text;
    int value = -1;
    std::string_view meaning = {};
};

/// One option of a stage.
struct Option {
    std::string_view name = {};
    Kind kind = Kind::Double;
    Content content = Content::Number;
    std::string_view defaultValue = {};  ///< as a person would type it, lists with commas; empty: none
    std::string_view unit = {};          ///< empty: a pure number, or no number; "data": that of the data
    std::span<const Word> words = {};
    std::string_view meaning = {};
    When when = When::Both;
    bool required = false;
    Giver giver = Giver::Person;

    /// The same option, read by these actions alone.
    consteval Option readAt(When actions) const {
        Option result = *this;
        result.when = actions;
        return result;
    }
    consteval Option atSetup() const { return readAt(When::Setup); }
    /// The same option, without which its actions fail.
    consteval Option asRequired() const {
        Option result = *this;
        result.required = true;
        return result;
    }
    /// The same option, filled in by the host from what it knows of the client.
    consteval Option fromHost() const {
        Option result = *this;
        result.giver = Giver::Host;
        return result;
    }
};

/// The word of that text, null if it is not among them.
constexpr const Word* findWord(std::span<const Word> words, std::string_view text) {
    for (const Word& word : words) {
        if (word.text == text) {
            return &word;
        }
    }
    return nullptr;
}

/// True for the kinds that carry any number of values.
constexpr bool isList(Kind kind) {
    return kind == Kind::Doubles || kind == Kind::Ints || kind == Kind::Logicals || kind == Kind::Texts;
}

namespace detail {
template <Kind>
struct ValueOf;
template <>
struct ValueOf<Kind::Double> {
    using type = double;
};
template <>
struct ValueOf<Kind::Int> {
    using type = int;
};
template <>
struct ValueOf<Kind::Logical> {
    using type = bool;
};
template <>
struct ValueOf<Kind::Text> {
    using type = std::string;
};
template <>
struct ValueOf<Kind::UnicodeText> {
    using type = std::u16string;
};
template <>
struct ValueOf<Kind::Doubles> {
    using type = std::vector<double>;
};
template <>
struct ValueOf<Kind::Ints> {
    using type = std::vector<int>;
};
template <>
struct ValueOf<Kind::Logicals> {
    using type = std::vector<bool>;
};
template <>
struct ValueOf<Kind::Texts> {
    using type = std::vector<std::string>;
};
template <>
struct ValueOf<Kind::DoubleOrInt> {
    using type = double;
};
}  // namespace detail

/// The type that a reader hands to the setter for an option of this kind.
template <Kind kind>
using ValueOf = typename detail::ValueOf<kind>::type;

// Makers of the rows, one for each form that a person knows.

consteval Option number(std::string_view name, std::string_view defaultValue, std::string_view unit,
                        std::string_view meaning) {
    return {.name = name, .defaultValue = defaultValue, .unit = unit, .meaning = meaning};
}

/// A count or an index that arrives as a double.
consteval Option wholeNumber(std::string_view name, std::string_view defaultValue, std::string_view unit,
                             std::string_view meaning) {
    return {
        .name = name, .content = Content::WholeNumber, .defaultValue = defaultValue, .unit = unit, .meaning = meaning};
}

/// A count or an index that arrives as an integer.
consteval Option integer(std::string_view name, std::string_view defaultValue, std::string_view unit,
                         std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Int,
            .content = Content::WholeNumber,
            .defaultValue = defaultValue,
            .unit = unit,
            .meaning = meaning};
}

consteval Option logical(std::string_view name, std::string_view defaultValue, std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Logical,
            .content = Content::TrueFalse,
            .defaultValue = defaultValue,
            .meaning = meaning};
}

/// A choice among words, given by its word.
consteval Option word(std::string_view name, std::string_view defaultValue, std::span<const Word> words,
                      std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Text,
            .content = Content::Word,
            .defaultValue = defaultValue,
            .words = words,
            .meaning = meaning};
}

consteval Option text(std::string_view name, std::string_view defaultValue, std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Text,
            .content = Content::FreeText,
            .defaultValue = defaultValue,
            .meaning = meaning};
}

/// A number that travels as text.
consteval Option numberText(std::string_view name, std::string_view defaultValue, std::string_view unit,
                            std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Text,
            .content = Content::NumberText,
            .defaultValue = defaultValue,
            .unit = unit,
            .meaning = meaning};
}

/// Numbers with commas between them that travel as one text.
consteval Option numbersText(std::string_view name, std::string_view defaultValue, std::string_view unit,
                             std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Text,
            .content = Content::NumbersText,
            .defaultValue = defaultValue,
            .unit = unit,
            .meaning = meaning};
}

consteval Option numbers(std::string_view name, std::string_view defaultValue, std::string_view unit,
                         std::string_view meaning) {
    return {.name = name, .kind = Kind::Doubles, .defaultValue = defaultValue, .unit = unit, .meaning = meaning};
}

consteval Option integers(std::string_view name, std::string_view defaultValue, std::string_view unit,
                          std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Ints,
            .content = Content::WholeNumber,
            .defaultValue = defaultValue,
            .unit = unit,
            .meaning = meaning};
}

consteval Option logicals(std::string_view name, std::string_view defaultValue, std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Logicals,
            .content = Content::TrueFalse,
            .defaultValue = defaultValue,
            .meaning = meaning};
}

/// A list of words.
consteval Option wordList(std::string_view name, std::string_view defaultValue, std::span<const Word> words,
                          std::string_view meaning) {
    return {.name = name,
            .kind = Kind::Texts,
            .content = Content::Word,
            .defaultValue = defaultValue,
            .words = words,
            .meaning = meaning};
}

/// An index that may arrive as a double or as an integer.
consteval Option wholeNumberOrInteger(std::string_view name, std::string_view defaultValue, std::string_view unit,
                                      std::string_view meaning) {
    return {.name = name,
            .kind = Kind::DoubleOrInt,
            .content = Content::WholeNumber,
            .defaultValue = defaultValue,
            .unit = unit,
            .meaning = meaning};
}

/// A list of options, as the stages hold them.
template <std::size_t count>
using OptionList = std::array<const Option*, count>;

/// A list of the options given.
template <typename... Options>
consteval OptionList<sizeof...(Options)> list(const Options&... options) {
    return {&options...};
}

/// The lists one behind the other.
template <std::size_t... counts>
consteval OptionList<(counts + ...)> join(const OptionList<counts>&... lists) {
    OptionList<(counts + ...)> result{};
    std::size_t filled = 0;
    const auto append = [&](const auto& part) {
        for (const Option* option : part) {
            result[filled++] = option;
        }
    };
    (append(lists), ...);
    return result;
}

}  // namespace dspwavedecks::catalogue
