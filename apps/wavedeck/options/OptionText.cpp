#include "OptionText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "EngineeringNumber.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

using dspwavedecks::catalogue::Content;
using dspwavedecks::catalogue::Kind;
using dspwavedecks::catalogue::Option;
using foundation::numbenchdata::ArrayFactory;
using streamplug::interfaces::device::PropertyList;

[[noreturn]] void refuse(const Option& option, std::string_view text, const std::string& allowed) {
    throw UsageError(std::string(option.name) + ": `" + std::string(text) + "` is not " + allowed);
}

double readOneNumber(const Option& option, std::string_view text) {
    const auto value = parseNumber(text);
    if (!value) {
        refuse(option, text, "a number (suffixes k M G m u n, no unit)");
    }
    if (option.content == Content::WholeNumber && !(std::isfinite(*value) && *value == std::trunc(*value))) {
        refuse(option, text, "a whole number");
    }
    return *value;
}

int readOneInt(const Option& option, std::string_view text) {
    const double value = readOneNumber(option, text);
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
        refuse(option, text, "a whole number of 32 bits");
    }
    return static_cast<int>(value);
}

bool readOneLogical(const Option& option, std::string_view text) {
    if (text != "true" && text != "false") {
        refuse(option, text, "true or false");
    }
    return text == "true";
}

std::string readOneWord(const Option& option, std::string_view text) {
    const auto same = [&](const auto& word) { return word.text == text; };
    if (option.content == Content::Word && std::none_of(option.words.begin(), option.words.end(), same)) {
        std::vector<std::string_view> words;
        for (const auto& word : option.words) {
            words.push_back(word.text);
        }
        refuse(option, text, "one of " + join(words, ", "));
    }
    return std::string(text);
}

/// A number as the text in which it travels: the shortest that reads back the same, infinity as "Inf".
std::string numberAsText(const Option& option, std::string_view text) {
    const double value = readOneNumber(option, text);
    if (std::isinf(value)) {
        return value > 0.0 ? "Inf" : "-Inf";
    }
    std::array<char, 40> shown{};
    for (int digits = 1; digits <= std::numeric_limits<double>::max_digits10; ++digits) {
        std::snprintf(shown.data(), shown.size(), "%.*g", digits, value);
        if (parseNumber(shown.data()) == value) {
            break;
        }
    }
    return shown.data();
}

std::string readOneText(const Option& option, std::string_view text) {
    switch (option.content) {
        case Content::NumberText:
            return numberAsText(option, text);
        case Content::NumbersText: {
            std::vector<std::string> numbers;
            for (const auto& part : split(text, ',')) {
                numbers.push_back(numberAsText(option, part));
            }
            return join(numbers, ",");
        }
        default:
            return readOneWord(option, text);
    }
}

/// The parts of a list; an empty text is the empty list.
template <typename Value>
std::vector<Value> readList(const Option& option, std::string_view text,
                            Value (*readOne)(const Option&, std::string_view)) {
    std::vector<Value> values;
    if (!text.empty()) {
        for (const auto& part : split(text, ',')) {
            values.push_back(readOne(option, part));
        }
    }
    return values;
}

}  // namespace

void addOptionFromText(const Option& option, std::string_view text, PropertyList& list) {
    const std::string name(option.name);
    switch (option.kind) {
        case Kind::Double:
        case Kind::DoubleOrInt:
            list.addDouble(name, readOneNumber(option, text));
            return;
        case Kind::Int:
            list.addInt(name, readOneInt(option, text));
            return;
        case Kind::Logical:
            list.addLogical(name, readOneLogical(option, text));
            return;
        case Kind::Text:
        case Kind::UnicodeText:
            list.addChar(name, readOneText(option, text));
            return;
        case Kind::Doubles:
            list.addDoubles(name, readList<double>(option, text, readOneNumber));
            return;
        case Kind::Ints:
            list.addInts(name, readList<int>(option, text, readOneInt));
            return;
        case Kind::Logicals:
            list.addLogicals(name, readList<bool>(option, text, readOneLogical));
            return;
        case Kind::Texts: {
            std::vector<foundation::numbenchdata::Array> cells;
            for (const auto& word : readList<std::string>(option, text, readOneWord)) {
                cells.push_back(ArrayFactory::createChar(word));
            }
            list.add(name, ArrayFactory::createCell(cells));
            return;
        }
    }
}

std::string describeType(const Option& option) {
    const bool list = dspwavedecks::catalogue::isList(option.kind);
    switch (option.content) {
        case Content::Number:
            return list ? "numbers a,b,c" : "number";
        case Content::WholeNumber:
            return list ? "whole numbers a,b,c" : "whole number";
        case Content::NumberText:
            return "number or Inf";
        case Content::NumbersText:
            return "numbers or Inf a,b,c";
        case Content::TrueFalse:
            return list ? "true/false a,b,c" : "true/false";
        case Content::Word:
            return list ? "words a,b,c" : "word";
        case Content::FreeText:
            return "text";
    }
    return "";
}

}  // namespace program
