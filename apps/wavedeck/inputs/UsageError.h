#pragma once

#include <stdexcept>

namespace program {

/// What a person typed, or an input they named, cannot be used. The text is one line that says what was wrong and
/// where; the program prints it and ends with status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace program
