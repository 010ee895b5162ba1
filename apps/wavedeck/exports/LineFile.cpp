#include "LineFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "UsageError.h"

namespace program {
namespace {

[[noreturn]] void failExisting(const std::string& path) {
    throw UsageError(path + ": is there already; --overwrite replaces it");
}

}  // namespace

LineFile::LineFile(const std::string& path, Existing existing) : name_(path == "-" ? "standard output" : path) {
    constexpr int permissions = 0666;
    const int mode = existing == Existing::Replaced ? O_TRUNC : O_EXCL;
    descriptor_ =
        path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | mode, permissions);
    if (descriptor_ < 0 && errno == EEXIST) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) {
            failExisting(path);
        }
        descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);  // a pipe or a device
    }
    if (descriptor_ < 0) {
        throw UsageError(name_ + ": " + std::strerror(errno));
    }
    // Standard output may be a file with something in it already.
    wholeLines_ = lseek(descriptor_, 0, SEEK_CUR);
}

LineFile::~LineFile() {
    close(descriptor_);
}

bool LineFile::write(std::string_view lines) {
    for (std::size_t written = 0; written < lines.size();) {
        const auto count = ::write(descriptor_, lines.data() + written, lines.size() - written);
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
    wholeLines_ += wholeLines_ >= 0 ? static_cast<std::int64_t>(lines.size()) : 0;
    return true;
}

void checkNewFile(const std::string& path, Existing existing) {
    if (existing == Existing::Refused && access(path.c_str(), F_OK) == 0) {
        failExisting(path);
    }
}

void writeWholeFile(const std::string& path, std::string_view text, Existing existing) {
    const auto beside = path + ".part";
    try {
        LineFile(beside, Existing::Replaced).write(text);
        // A link fails where a file stands; a rename replaces it.
        if (existing == Existing::Refused && link(beside.c_str(), path.c_str()) != 0) {
            errno == EEXIST ? failExisting(path) : throw UsageError(path + ": " + std::strerror(errno));
        }
        if (existing == Existing::Replaced && std::rename(beside.c_str(), path.c_str()) != 0) {
            throw UsageError(path + ": " + std::strerror(errno));
        }
    } catch (const UsageError&) {
        unlink(beside.c_str());
        throw;
    }
    unlink(beside.c_str());
}

}  // namespace program
