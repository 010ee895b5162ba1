#include "MessageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "UsageError.h"

namespace program {

MessageFile::MessageFile(const std::string& path) : name_(path == "-" ? "standard output" : path) {
    constexpr int permissions = 0666;
    descriptor_ =
        path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions);
    if (descriptor_ < 0) {
        throw UsageError(name_ + ": " + std::strerror(errno));
    }
    // Standard output may be a file with something in it already.
    wholeLines_ = lseek(descriptor_, 0, SEEK_CUR);
}

MessageFile::~MessageFile() {
    close(descriptor_);
}

bool MessageFile::write(std::string_view client, std::string_view event, std::string_view message) {
    line_ = "{\"client\":\"";
    line_ += client;
    line_ += "\",\"event\":\"";
    line_ += event;
    line_ += "\",\"message\":";
    line_ += message;
    line_ += "}\n";
    for (std::size_t written = 0; written < line_.size();) {
        const auto count = ::write(descriptor_, line_.data() + written, line_.size() - written);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (errno == EPIPE) {
            return false;
        } else if (errno != EINTR) {
            const int reason = errno;
            if (wholeLines_ >= 0) {
                [[maybe_unused]] const int truncated = ftruncate(descriptor_, wholeLines_);
            }
            throw UsageError(name_ + ": " + std::strerror(reason));
        }
    }
    wholeLines_ += wholeLines_ >= 0 ? static_cast<std::int64_t>(line_.size()) : 0;
    return true;
}

}  // namespace program
