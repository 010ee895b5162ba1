#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/numbenchdata/Array.h"
#include "wavedeck/Visibility.h"

namespace streamplug::interfaces {

/// A named property. What it carries is reached by a checked downcast.
class WAVEDECK_API IPropertyInfo {
public:
    /// The property's name, NUL-terminated; lives as long as the property.
    virtual const char* getName() const = 0;
    virtual ~IPropertyInfo();
};

}  // namespace streamplug::interfaces

namespace streamplug::kit::array {

/// A property that carries one array: the only kind that the option readers take.
class WAVEDECK_API PropertyEvent : public interfaces::IPropertyInfo {
public:
    PropertyEvent(std::string name, const foundation::numbenchdata::Array& value)
        : name_(std::move(name)), value_(value) {}
    ~PropertyEvent() override;

    const char* getName() const override { return name_.c_str(); }
    const foundation::numbenchdata::Array& getValue() const { return value_; }

private:
    std::string name_;
    foundation::numbenchdata::Array value_;
};

}  // namespace streamplug::kit::array

namespace streamplug::interfaces::device {

/// The list of named options that configures a stage: a contiguous sequence of pointers to properties. Names may
/// repeat; readers take the first.
class WAVEDECK_API PropertyList {
public:
    using const_iterator = std::vector<const IPropertyInfo*>::const_iterator;

    PropertyList() = default;
    PropertyList(const PropertyList&) = default;
    PropertyList& operator=(const PropertyList&) = default;
    PropertyList(PropertyList&&) = default;
    PropertyList& operator=(PropertyList&&) = default;
    ~PropertyList();

    const_iterator begin() const { return pointers_.begin(); }
    const_iterator end() const { return pointers_.end(); }

    /// Appends a property; the list keeps it alive.
    void add(std::shared_ptr<const IPropertyInfo> property);

    /// Appends all properties of another list, which both lists then keep alive.
    PropertyList& append(const PropertyList& other);

    /// The first property of that name, or null.
    const IPropertyInfo* find(const std::string& name) const;

    /// Appends an option `name` with the given value.
    PropertyList& add(const std::string& name, const foundation::numbenchdata::Array& value);

    // Options of the common kinds.
    PropertyList& addDouble(const std::string& name, double value);
    PropertyList& addDoubles(const std::string& name, const std::vector<double>& values);
    PropertyList& addInt(const std::string& name, int value);
    PropertyList& addInts(const std::string& name, const std::vector<int>& values);
    PropertyList& addLogical(const std::string& name, bool value);
    PropertyList& addLogicals(const std::string& name, const std::vector<bool>& values);
    PropertyList& addChar(const std::string& name, const std::string& text);

private:
    std::vector<std::shared_ptr<const IPropertyInfo>> properties_;
    std::vector<const IPropertyInfo*> pointers_;
};

}  // namespace streamplug::interfaces::device
