#include "RawReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "EngineeringNumber.h"
#include "StopRequest.h"
#include "UsageError.h"

namespace program {

RawReader::RawReader(const std::string& path, const SampleFormat& format, double rate, int channels, double factor)
    : format_(format), factor_(factor) {
    facts_.name = path == "-" ? "standard input" : path;
    facts_.format = "raw samples, " + std::string(format.meaning);
    facts_.scale = format.scale;
    if (factor != 1.0) {
        facts_.scale += ", times " + formatQuantity(factor, "", 15);
    }
    facts_.sampleRate = rate;
    facts_.channels = channels;
    facts_.isComplex = format.isComplex;
    bytesPerTime_ = format.bytes * static_cast<std::size_t>(facts_.rows());

    descriptor_ = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
        throw UsageError(facts_.name + ": " + std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        close(descriptor_);
        throw UsageError(facts_.name + ": is a directory");
    }
    if (S_ISREG(status.st_mode)) {
        facts_.length = static_cast<std::uint64_t>(status.st_size) / bytesPerTime_;
    }
}

RawReader::~RawReader() {
    close(descriptor_);
}

void RawReader::fill(std::size_t wanted) {
    if (stored_.size() < wanted) {
        stored_.resize(wanted);
    }
    while (held_ < wanted && !ended_ && StopRequest::waitReadable(descriptor_)) {
        const auto got = ::read(descriptor_, stored_.data() + held_, wanted - held_);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            throw UsageError(facts_.name + ": " + std::strerror(errno));
        }
        ended_ = got == 0;
        held_ += static_cast<std::size_t>(got);
    }
}

std::size_t RawReader::read(std::size_t points, std::vector<double>& frame) {
    const bool endedBefore = ended_;
    fill(points * bytesPerTime_);
    const std::size_t n = held_ / bytesPerTime_;
    const std::size_t rest = held_ - n * bytesPerTime_;
    const std::size_t numbers = n * static_cast<std::size_t>(facts_.rows());
    interleaved_.resize(numbers);
    format_.decode(stored_.data(), numbers, interleaved_.data());
    if (factor_ != 1.0) {
        for (double& value : interleaved_) {
            value *= factor_;
        }
    }
    separate(interleaved_.data(), n, facts_, frame);
    if (ended_ && !endedBefore && rest > 0) {
        notes_.push_back(facts_.name + ": the last " + std::to_string(rest) + " bytes are part of a sample of " +
                         std::to_string(bytesPerTime_) + " bytes and are left out");
    }
    held_ = 0;
    return n;
}

}  // namespace program
