#pragma once

#include <string>
#include <string_view>

#include "LineFile.h"

namespace program {

/// Where client messages go: one line each of the form {"client":NAME,"event":EVENT,"message":MESSAGE}.
class MessageFile {
public:
    /// path  a file, made anew, or "-" for standard output. Throws UsageError when it cannot be opened.
    explicit MessageFile(const std::string& path) : file_(path, Existing::Replaced) {}

    /// Writes one line. Returns false when the reader of a pipe has gone. Throws UsageError for other failures.
    bool write(std::string_view client, std::string_view event, std::string_view message);

private:
    LineFile file_;
    std::string line_;  ///< scratch
};

}  // namespace program
