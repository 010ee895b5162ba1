#include "OptionReaders.h"

#include <algorithm>
#include <cstring>

#include "streamplug/Exceptions.h"

namespace dspwavedecks {

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayType;
using foundation::numbenchdata::CharArray;
using foundation::numbenchdata::InvalidArrayTypeException;
using foundation::numbenchdata::OptionalString;
using foundation::numbenchdata::TypedArray;
using streamplug::interfaces::IPropertyInfo;
using streamplug::kit::array::OptionInvalidValue;
using streamplug::kit::array::OptionNotExpectedType;
using streamplug::kit::array::OptionNotFound;
using streamplug::kit::array::PropertyEvent;

std::string optionText(const std::string& name, const char* fault) {
    return "Option: " + name + fault;
}

const IPropertyInfo* findProperty(const PropertyList& list, const std::string& name) {
    const auto property = std::find_if(list.begin(), list.end(), [&](const IPropertyInfo* candidate) {
        return std::strcmp(candidate->getName(), name.c_str()) == 0;
    });
    return property == list.end() ? nullptr : *property;
}

const Array& findTyped(const PropertyList& list, const std::string& name, ArrayType type) {
    const Array& value = findOptionValue(list, name);
    if (value.getType() != type) {
        throw OptionNotExpectedType(optionText(name, " was not the expected type"));
    }
    return value;
}

void requireScalar(const Array& value, const std::string& name) {
    if (value.getNumberOfElements() != 1) {
        throw OptionNotExpectedType(optionText(name, " was not a scalar"));
    }
}

template <class Element>
Element readScalar(const PropertyList& list, const std::string& name, ArrayType type) {
    const Array& value = findTyped(list, name, type);
    requireScalar(value, name);
    return *TypedArray<Element>(value).begin();
}

template <class Element>
std::vector<Element> readVector(const PropertyList& list, const std::string& name, ArrayType type) {
    const TypedArray<Element> typed(findTyped(list, name, type));
    std::vector<Element> result;
    result.reserve(typed.getNumberOfElements());
    for (const Element& element : typed) {
        result.push_back(element);
    }
    return result;
}

std::string narrow(const std::u16string& text, const std::string& name) {
    std::string result;
    result.reserve(text.size());
    for (const char16_t unit : text) {
        if (unit >= 128) {
            throw OptionInvalidValue(optionText(name, " value had non-ASCII characters"));
        }
        result.push_back(static_cast<char>(unit));
    }
    return result;
}

/// The texts of a string array or of a cell array of char arrays; throws for an element that has none.
std::vector<std::u16string> readTexts(const Array& value) {
    std::vector<std::u16string> texts;
    texts.reserve(value.getNumberOfElements());
    if (value.getType() == ArrayType::Cell) {
        for (const Array& element : TypedArray<Array>(value)) {
            texts.push_back(CharArray(element).toUTF16());
        }
        return texts;
    }
    const TypedArray<OptionalString> strings(value);
    for (std::size_t i = 0; i < strings.getNumberOfElements(); ++i) {
        texts.push_back(strings[i]);
    }
    return texts;
}

}  // namespace

bool hasOption(const PropertyList& list, const std::string& name) {
    return findProperty(list, name) != nullptr;
}

const Array& findOptionValue(const PropertyList& list, const std::string& name) {
    const IPropertyInfo* const property = findProperty(list, name);
    if (property == nullptr) {
        throw OptionNotFound(optionText(name, " was not found"));
    }
    const auto* const event = dynamic_cast<const PropertyEvent*>(property);
    if (event == nullptr) {
        throw OptionNotExpectedType(optionText(name, " was not the expected PropertyEvent"));
    }
    return event->getValue();
}

std::u16string readU16StringOption(const PropertyList& list, const std::string& name) {
    const Array& value = findOptionValue(list, name);
    if (value.getType() == ArrayType::Char) {
        return CharArray(value).toUTF16();
    }
    if (value.getType() == ArrayType::String) {
        requireScalar(value, name);
        try {
            return readTexts(value).front();
        } catch (const InvalidArrayTypeException&) {
            // The missing string has no text: told below.
        }
    }
    throw OptionNotExpectedType(optionText(name, " was not a char or string"));
}

std::string readStringOption(const PropertyList& list, const std::string& name) {
    return narrow(readU16StringOption(list, name), name);
}

double readDoubleOption(const PropertyList& list, const std::string& name) {
    return readScalar<double>(list, name, ArrayType::Double);
}

int readIntOption(const PropertyList& list, const std::string& name) {
    return readScalar<int>(list, name, ArrayType::Int);
}

bool readBoolOption(const PropertyList& list, const std::string& name) {
    return readScalar<bool>(list, name, ArrayType::Logical);
}

double readDoubleOrIntOption(const PropertyList& list, const std::string& name) {
    return findOptionValue(list, name).getType() == ArrayType::Int ? readIntOption(list, name)
                                                                   : readDoubleOption(list, name);
}

std::vector<int> readIntVectorOption(const PropertyList& list, const std::string& name) {
    return readVector<int>(list, name, ArrayType::Int);
}

std::vector<double> readDoubleVectorOption(const PropertyList& list, const std::string& name) {
    return readVector<double>(list, name, ArrayType::Double);
}

std::vector<bool> readBoolVectorOption(const PropertyList& list, const std::string& name) {
    return readVector<bool>(list, name, ArrayType::Logical);
}

std::vector<std::string> readStringVectorOption(const PropertyList& list, const std::string& name) {
    const Array& value = findOptionValue(list, name);
    std::vector<std::u16string> texts;
    try {
        texts = readTexts(value);
    } catch (const InvalidArrayTypeException&) {
        throw OptionNotExpectedType(optionText(name, " was not a cell array of chars or a string array"));
    }
    std::vector<std::string> result;
    result.reserve(texts.size());
    for (const std::u16string& text : texts) {
        result.push_back(narrow(text, name));
    }
    return result;
}

}  // namespace dspwavedecks
