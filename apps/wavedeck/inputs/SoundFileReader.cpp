#include "SoundFileReader.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "EngineeringNumber.h"
#include "StopRequest.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

/// The name of a container or of a type of sample.
std::string formatName(int format) {
    SF_FORMAT_INFO info{};
    info.format = format;
    sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info);
    return info.name != nullptr ? info.name : "unknown";
}

bool storesFloatingPoint(int subtype) {
    return subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE;
}

/// The bytes that the header promises beyond those in the file, as libsndfile's log of the header tells: a line
/// "data : PROMISED (should be PRESENT)", of RF64 and W64 the same of the whole file. Streamed files promise all ones
/// or nothing at all; that counts as not known.
std::uint64_t missingBytes(SNDFILE* file) {
    static constexpr std::array<std::string_view, 4> parts{"data", "SSND", "Riff", "riff"};
    std::array<char, 16384> log{};
    sf_command(file, SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
    for (const auto& line : split(log.data(), '\n')) {
        const auto at = line.find("(should be ");
        const auto colon = line.find(':');
        const auto begin = std::min(line.find_first_not_of(' '), line.size());
        const auto name = line.substr(begin, std::min(line.find(' ', begin), colon) - begin);
        if (at == std::string::npos || std::find(parts.begin(), parts.end(), name) == parts.end()) {
            continue;
        }
        const auto promised = std::strtoull(line.c_str() + colon + 1, nullptr, 10);
        const auto present = std::strtoull(line.c_str() + at + std::strlen("(should be "), nullptr, 10);
        constexpr unsigned long long streamed = 0x7FFFF000;
        const bool isLong = name == "Riff" || name == "riff";
        if (promised > present && (promised < streamed || isLong)) {
            return promised - present;
        }
    }
    return 0;
}

/// What of the file the header leaves out: all of a recording that was never finished, the rest of a WAV file that is
/// larger than its header can say.
std::string leftOut(const std::string& path, const SF_INFO& info) {
    struct stat status {};
    constexpr off_t largestHeader = 65536;
    constexpr off_t largestWav = 0xFFFFFFFF;
    const int container = info.format & SF_FORMAT_TYPEMASK;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return "";
    }
    if (info.frames == 0 && status.st_size > largestHeader) {
        return path + ": the header counts no samples in " + std::to_string(status.st_size) +
               " bytes, as in a recording that was never finished; --format and --rate read them as raw samples";
    }
    if ((container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX) && status.st_size > largestWav + largestHeader) {
        return path +
               ": a WAV file ends at 4 GiB, and what this one holds behind that is left out; RF64, W64 and raw "
               "samples may be larger";
    }
    return "";
}

void checkReadable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        throw UsageError(path + ": " + std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw UsageError(path + ": is a directory");
    }
}

}  // namespace

SoundFileReader::SoundFileReader(const std::string& path, double factor, bool isIq) : factor_(factor) {
    checkReadable(path);
    SF_INFO info{};
    file_.reset(sf_open(path.c_str(), SFM_READ, &info));
    if (!file_) {
        std::string why = sf_strerror(nullptr);
        while (!why.empty() && (why.back() == '.' || why.back() == '\n')) {
            why.pop_back();
        }
        throw UsageError(path + ": not a sound file that can be read (" + why +
                         "); raw samples need --format and --rate");
    }
    if (info.channels < 1 || info.samplerate < 1) {
        throw UsageError(path + ": the header names no channel or no sample rate");
    }
    const int subtype = info.format & SF_FORMAT_SUBMASK;
    facts_.name = path;
    facts_.format = formatName(info.format & SF_FORMAT_TYPEMASK) + ", " + formatName(subtype);
    facts_.scale = storesFloatingPoint(subtype) ? "values as stored" : "full scale is 1";
    if (factor != 1.0) {
        facts_.scale += ", times " + formatQuantity(factor, "", 15);
    }
    facts_.sampleRate = info.samplerate;
    if (isIq && info.channels % 2 != 0) {
        throw UsageError("--iq: " + path + " has " + std::to_string(info.channels) +
                         (info.channels == 1 ? " channel, which makes no pair" : " channels, which make no pairs"));
    }
    facts_.channels = isIq ? info.channels / 2 : info.channels;
    facts_.isComplex = isIq;
    isSeekable_ = info.seekable != 0;
    if (info.seekable != 0 && info.frames >= 0) {
        facts_.length = static_cast<std::uint64_t>(info.frames);
    }
    if (const auto text = leftOut(path, info); !text.empty()) {
        note(text);
    }
    if (const auto missing = missingBytes(file_.get()); missing > 0) {
        note(path + ": the file is cut short: its header promises " + std::to_string(missing) +
             " more bytes; what is there is used");
    }
}

std::size_t SoundFileReader::read(std::size_t points, std::vector<double>& frame) {
    const auto channels = static_cast<std::size_t>(facts_.rows());
    interleaved_.resize(points * channels);
    std::size_t n = 0;
    while (n < points && !ended_ && !StopRequest::requested()) {
        const auto got =
            sf_readf_double(file_.get(), interleaved_.data() + n * channels, static_cast<sf_count_t>(points - n));
        ended_ = got <= 0;
        n += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    next_ += n;
    if (ended_) {
        noteMissingSamples();
    }
    if (factor_ != 1.0) {
        for (std::size_t i = 0; i < n * channels; ++i) {
            interleaved_[i] *= factor_;
        }
    }
    separate(interleaved_.data(), n, facts_, frame);
    return n;
}

bool SoundFileReader::seek(std::uint64_t sample) {
    if (facts_.length) {
        sample = std::min(sample, *facts_.length);
    }
    if (isSeekable_) {
        const auto reached = sf_seek(file_.get(), static_cast<sf_count_t>(sample), SEEK_SET);
        next_ = reached < 0 ? next_ : static_cast<std::uint64_t>(reached);
        ended_ = false;
        return reached >= 0;
    }
    if (sample < next_) {
        return false;
    }
    constexpr std::size_t step = 4096;
    std::vector<double> passed;
    while (next_ < sample &&
           read(static_cast<std::size_t>(std::min<std::uint64_t>(step, sample - next_)), passed) > 0) {
    }
    return true;
}

void SoundFileReader::noteMissingSamples() {
    if (facts_.length && next_ < *facts_.length && notes_.empty()) {
        note(facts_.name + ": the file is cut short: " + std::to_string(*facts_.length) + " samples promised, " +
             std::to_string(next_) + " there; what is there is used");
    }
}

}  // namespace program
