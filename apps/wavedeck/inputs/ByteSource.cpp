#include "ByteSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "StopRequest.h"
#include "UsageError.h"

namespace program {

ByteSource::ByteSource(const std::string& path) : name_(path == "-" ? "standard input" : path) {
    descriptor_ = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
        throw UsageError(name_ + ": " + std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        close(descriptor_);
        throw UsageError(name_ + ": is a directory");
    }
    if (S_ISREG(status.st_mode)) {
        begin_ = static_cast<std::uint64_t>(std::max<off_t>(lseek(descriptor_, 0, SEEK_CUR), 0));
        const auto whole = static_cast<std::uint64_t>(status.st_size);
        size_ = whole - std::min(begin_, whole);
    }
}

ByteSource::~ByteSource() {
    close(descriptor_);
}

std::size_t ByteSource::readSome(unsigned char* bytes, std::size_t wanted) {
    while (!ended_ && StopRequest::waitReadable(descriptor_)) {
        const auto got = ::read(descriptor_, bytes, wanted);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            throw UsageError(name_ + ": " + std::strerror(errno));
        }
        ended_ = got == 0 && wanted > 0;
        position_ += static_cast<std::uint64_t>(got);
        return static_cast<std::size_t>(got);
    }
    return 0;
}

std::size_t ByteSource::read(unsigned char* bytes, std::size_t wanted) {
    std::size_t held = 0;
    while (held < wanted) {
        const auto got = readSome(bytes + held, wanted - held);
        if (got == 0) {
            break;
        }
        held += got;
    }
    return held;
}

bool ByteSource::seek(std::uint64_t position) {
    if (size_) {
        // Behind the end there is nothing; the largest position of a file system is never passed.
        position_ = std::min(position, *size_);
        ended_ = false;
        return lseek(descriptor_, static_cast<off_t>(begin_ + position_), SEEK_SET) >= 0;
    }
    if (position < position_) {
        return false;
    }
    std::array<unsigned char, 65536> passed{};
    while (position_ < position) {
        const auto step = std::min<std::uint64_t>(position - position_, passed.size());
        if (read(passed.data(), static_cast<std::size_t>(step)) < step) {
            break;
        }
    }
    return true;
}

}  // namespace program
