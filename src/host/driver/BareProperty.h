#pragma once

#include <string>
#include <utility>

#include "streamplug/PropertyList.h"

namespace wavedeck::driver {

/// A property of another kind than those that carry an array: what a stage makes of one is the stage's to say.
class BareProperty final : public streamplug::interfaces::IPropertyInfo {
public:
    explicit BareProperty(std::string name) : name_(std::move(name)) {}
    const char* getName() const override { return name_.c_str(); }

private:
    std::string name_;
};

}  // namespace wavedeck::driver
