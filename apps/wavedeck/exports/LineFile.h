#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace program {

/// What becomes of a file that is there already.
enum class Existing { Replaced, Refused };

/// A file of lines, or standard output. Lines are written whole: what a full disk left of a line is taken away again,
/// and a pipe whose reader has gone is written no more.
class LineFile {
public:
    /// path  a file, made anew, or "-" for standard output. Throws UsageError when it cannot be opened.
    LineFile(const std::string& path, Existing existing);
    ~LineFile();
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    /// Writes one or more lines, each ended by a line break. Returns false when the reader of a pipe has gone. Throws
    /// UsageError for other failures.
    bool write(std::string_view lines);

private:
    std::string name_;
    int descriptor_ = -1;
    std::int64_t wholeLines_ = 0;  ///< bytes of the lines written so far
};

/// Refuses a path at which a file stands already, unless it is to be replaced, and a folder that takes no files. Throws
/// UsageError.
void checkNewFile(const std::string& path, Existing existing);

/// Writes a whole file beside the path and moves it there, so that no half of it is ever seen. Throws UsageError when
/// that fails, or when a file has come there that is not to be replaced. A pipe or a device is written to as it is.
void writeWholeFile(const std::string& path, std::string_view text, Existing existing);

}  // namespace program
