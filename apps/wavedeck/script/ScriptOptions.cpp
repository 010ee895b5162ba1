#include "ScriptOptions.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "BareProperty.h"

namespace program {
namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::OptionalString;
using streamplug::interfaces::device::PropertyList;

/// UTF-8 as UTF-16. The script's text was checked when it was parsed, so that every sequence is whole.
std::u16string toUtf16(const std::string& text) {
    std::u16string units;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        std::uint32_t point = length == 1 ? lead : lead & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            point = (point << 6U) | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
        }
        if (point >= 0x10000) {
            units += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10U));
            point = 0xDC00 + ((point - 0x10000) & 0x3FFU);
        }
        units += static_cast<char16_t>(point);
        i += length;
    }
    return units;
}

/// The elements of a value: those of a list, or the value itself.
template <typename Element, typename Read>
std::vector<Element> readElements(const ScriptValue& value, Read read) {
    std::vector<Element> elements;
    if (!value.isList()) {
        elements.push_back(read(value));
        return elements;
    }
    for (const auto& element : value.list()) {
        elements.push_back(read(element));
    }
    return elements;
}

int readInt(const ScriptValue& value) {
    return static_cast<int>(value.wholeNumber(std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                                              "a whole number of 32 bits"));
}

Array readArray(const std::string& kind, const ScriptValue& value);

Array readCellElement(const ScriptValue& value) {
    if (value.isText()) {
        return ArrayFactory::createChar(toUtf16(value.text()));
    }
    const auto& members = value.members("a text or an object {KIND: VALUE}");
    if (members.size() != 1) {
        value.refuse("an object with one member {KIND: VALUE}");
    }
    return readArray(members.front().first, members.front().second);
}

Array readArray(const std::string& kind, const ScriptValue& value) {
    if (kind == "double") {
        return ArrayFactory::createDouble(
            readElements<double>(value, [](const ScriptValue& element) { return element.number(); }));
    }
    if (kind == "int") {
        return ArrayFactory::createInt(readElements<int>(value, readInt));
    }
    if (kind == "logical") {
        return ArrayFactory::createLogical(
            readElements<bool>(value, [](const ScriptValue& element) { return element.logical(); }));
    }
    if (kind == "char") {
        return ArrayFactory::createChar(toUtf16(value.text()));
    }
    if (kind == "string") {
        return ArrayFactory::createString(readElements<OptionalString>(value, [](const ScriptValue& element) {
            return element.isNull() ? OptionalString() : OptionalString(toUtf16(element.text("a text or null")));
        }));
    }
    if (kind == "cell") {
        return ArrayFactory::createCell(readElements<Array>(value, readCellElement));
    }
    value.refuse("one of the kinds double, int, logical, char, string, cell, property; this is \"" + kind + "\",");
}

}  // namespace

void appendScriptOptions(const ScriptValue& options, PropertyList& list) {
    for (const auto& [name, typed] : options.members("an object of options")) {
        const auto& members = typed.members("an object {KIND: VALUE}");
        if (members.size() != 1) {
            typed.refuse("an object with one member {KIND: VALUE}");
        }
        const auto& [kind, value] = members.front();
        if (kind == "property") {
            list.add(std::make_shared<wavedeck::driver::BareProperty>(name));
        } else {
            list.add(name, readArray(kind, value));
        }
    }
}

PropertyList readScriptOptions(const ScriptValue& options) {
    PropertyList list;
    appendScriptOptions(options, list);
    return list;
}

}  // namespace program
