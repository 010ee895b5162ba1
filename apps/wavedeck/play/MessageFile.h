#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace program {

/// Where client messages go: one line each of the form {"client":NAME,"event":EVENT,"message":MESSAGE}. Lines are
/// written whole: what a full disk left of a line is taken away again, and a pipe whose reader has gone is written no
/// more.
class MessageFile {
public:
    /// path  a file, made anew, or "-" for standard output. Throws UsageError when it cannot be opened.
    explicit MessageFile(const std::string& path);
    ~MessageFile();
    MessageFile(const MessageFile&) = delete;
    MessageFile& operator=(const MessageFile&) = delete;

    /// Writes one line. Returns false when the reader of a pipe has gone. Throws UsageError for other failures.
    bool write(std::string_view client, std::string_view event, std::string_view message);

private:
    std::string name_;
    int descriptor_ = -1;
    std::int64_t wholeLines_ = 0;  ///< bytes of the lines written so far
    std::string line_;             ///< scratch
};

}  // namespace program
