#include "LineFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "UsageError.h"

namespace program {
namespace {

[[noreturn]] void failExisting(const std::string& path) {
    throw UsageError(path + ": is there already; --overwrite replaces it");
}

/// What stands at a path: pipes and devices are written to, whatever becomes of files.
enum class Standing { Nothing, File, Device };

Standing findStanding(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return Standing::Nothing;
    }
    return S_ISREG(status.st_mode) ? Standing::File : Standing::Device;
}

}  // namespace

LineFile::LineFile(const std::string& path, Existing existing) : name_(path == "-" ? "standard output" : path) {
    constexpr int permissions = 0666;
    const int mode = existing == Existing::Replaced ? O_TRUNC : O_EXCL;
    descriptor_ =
        path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | mode, permissions);
    if (descriptor_ < 0 && errno == EEXIST) {
        if (findStanding(path) != Standing::Device) {
            failExisting(path);
        }
        descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
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
    const auto standing = findStanding(path);
    if (existing == Existing::Refused && standing == Standing::File) {
        failExisting(path);
    }
    const auto folder = path.substr(0, path.rfind('/') + 1);
    if (path != "-" && standing != Standing::Device && access(folder.empty() ? "." : folder.c_str(), W_OK) != 0) {
        throw UsageError(path + ": " + std::strerror(errno));
    }
}

void writeWholeFile(const std::string& path, std::string_view text, Existing existing) {
    if (findStanding(path) == Standing::Device) {
        LineFile(path, Existing::Replaced).write(text);
        return;
    }
    // Links stay, and so does the one by which a system names its standard output.
    std::error_code error;
    const auto resolved = std::filesystem::weakly_canonical(path, error);
    const auto target = error ? path : resolved.string();
    const auto beside = target + '.' + std::to_string(getpid()) + ".part";
    try {
        LineFile(beside, Existing::Refused).write(text);
        // A link fails where a file stands; a rename replaces it.
        if (existing == Existing::Refused && link(beside.c_str(), target.c_str()) != 0) {
            errno == EEXIST ? failExisting(path) : throw UsageError(path + ": " + std::strerror(errno));
        }
        if (existing == Existing::Replaced && std::rename(beside.c_str(), target.c_str()) != 0) {
            throw UsageError(path + ": " + std::strerror(errno));
        }
    } catch (const UsageError&) {
        unlink(beside.c_str());
        throw;
    }
    unlink(beside.c_str());
}

}  // namespace program
