#pragma once

#include <exception>
#include <string>
#include <utility>

#include "wavedeck/Visibility.h"

namespace numbench {

/// Base of every exception of the host: carries a text that says what was wrong.
class WAVEDECK_API Exception : public std::exception {
public:
    explicit Exception(std::string text) : text_(std::move(text)) {}
    ~Exception() override;

    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

}  // namespace numbench
