#pragma once

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "streamplug/PropertyList.h"

namespace testsupport {

using streamplug::interfaces::device::PropertyList;

/// The numbers of "1,2,3".
inline std::vector<double> numbersOf(const std::string& text) {
    std::vector<double> values;
    std::istringstream stream(text);
    for (std::string item; std::getline(stream, item, ',');) {
        values.push_back(std::stod(item));
    }
    return values;
}

/// Adds the option of that text, in the array that the catalogue says.
inline void addOption(PropertyList& list, const std::string& name, const std::string& value) {
    using dspwavedecks::catalogue::Kind;
    for (const auto& stage : dspwavedecks::catalogue::stages) {
        if (const auto* option = findOption(stage, name)) {
            switch (option->kind) {
                case Kind::Logical:
                    return static_cast<void>(list.addLogical(name, value == "true"));
                case Kind::Int:
                    return static_cast<void>(list.addInt(name, std::stoi(value)));
                case Kind::Text:
                case Kind::UnicodeText:
                    return static_cast<void>(list.addChar(name, value));
                default:
                    return static_cast<void>(list.addDoubles(name, numbersOf(value)));
            }
        }
    }
    throw std::invalid_argument("no option " + name);
}

/// The list of "name=value name=value ...".
inline PropertyList optionList(const std::string& text) {
    PropertyList list;
    std::istringstream stream(text);
    for (std::string item; stream >> item;) {
        addOption(list, item.substr(0, item.find('=')), item.substr(item.find('=') + 1));
    }
    return list;
}

}  // namespace testsupport
