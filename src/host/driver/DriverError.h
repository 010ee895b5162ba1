#pragma once

#include <string>

#include "numbench/Exception.h"
#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// What the driver throws when it is asked for something that cannot be done: a library that does not load, a name that
/// is not exported, a frame that does not fit its signal. The text is one sentence for a person.
class WAVEDECK_API DriverError : public numbench::Exception {
public:
    explicit DriverError(const std::string& text) : numbench::Exception(text) {}
    ~DriverError() override;
};

}  // namespace wavedeck::driver
