#pragma once

#include <string>

#include "numbench/Exception.h"
#include "wavedeck/Visibility.h"

/// What the option readers throw.
namespace streamplug::kit::array {

/// The named option is not in the list.
class WAVEDECK_API OptionNotFound : public numbench::Exception {
public:
    explicit OptionNotFound(const std::string& text) : numbench::Exception(text) {}
    ~OptionNotFound() override;
};

/// The named option holds another kind or number of elements than the reader takes.
class WAVEDECK_API OptionNotExpectedType : public numbench::Exception {
public:
    explicit OptionNotExpectedType(const std::string& text) : numbench::Exception(text) {}
    ~OptionNotExpectedType() override;
};

/// The named option holds a value that cannot be used.
class WAVEDECK_API OptionInvalidValue : public numbench::Exception {
public:
    explicit OptionInvalidValue(const std::string& text) : numbench::Exception(text) {}
    ~OptionInvalidValue() override;
};

}  // namespace streamplug::kit::array
