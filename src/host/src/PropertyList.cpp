#include "streamplug/PropertyList.h"

#include "streamplug/Exceptions.h"

namespace numbench {

Exception::~Exception() = default;

}  // namespace numbench

namespace streamplug::kit::array {

OptionNotFound::~OptionNotFound() = default;
OptionNotExpectedType::~OptionNotExpectedType() = default;
OptionInvalidValue::~OptionInvalidValue() = default;
PropertyEvent::~PropertyEvent() = default;

}  // namespace streamplug::kit::array

namespace streamplug::interfaces {

IPropertyInfo::~IPropertyInfo() = default;

namespace device {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;

PropertyList::~PropertyList() = default;

void PropertyList::add(std::shared_ptr<const IPropertyInfo> property) {
    pointers_.push_back(property.get());
    properties_.push_back(std::move(property));
}

PropertyList& PropertyList::append(const PropertyList& other) {
    const std::size_t count = other.properties_.size();  // the other list may be this one
    for (std::size_t i = 0; i < count; ++i) {
        add(std::shared_ptr<const IPropertyInfo>(other.properties_[i]));
    }
    return *this;
}

const IPropertyInfo* PropertyList::find(const std::string& name) const {
    for (const IPropertyInfo* property : pointers_) {
        if (name == property->getName()) {
            return property;
        }
    }
    return nullptr;
}

PropertyList& PropertyList::add(const std::string& name, const Array& value) {
    add(std::make_shared<kit::array::PropertyEvent>(name, value));
    return *this;
}

PropertyList& PropertyList::addDouble(const std::string& name, double value) {
    return addDoubles(name, {value});
}
PropertyList& PropertyList::addInt(const std::string& name, int value) {
    return addInts(name, {value});
}
PropertyList& PropertyList::addLogical(const std::string& name, bool value) {
    return addLogicals(name, {value});
}

PropertyList& PropertyList::addDoubles(const std::string& name, const std::vector<double>& values) {
    return add(name, ArrayFactory::createDouble(values));
}

PropertyList& PropertyList::addInts(const std::string& name, const std::vector<int>& values) {
    return add(name, ArrayFactory::createInt(values));
}

PropertyList& PropertyList::addLogicals(const std::string& name, const std::vector<bool>& values) {
    return add(name, ArrayFactory::createLogical(values));
}

PropertyList& PropertyList::addChar(const std::string& name, const std::string& text) {
    return add(name, ArrayFactory::createChar(text));
}

}  // namespace device
}  // namespace streamplug::interfaces
