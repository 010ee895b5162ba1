#include "ExcerptReader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "EngineeringNumber.h"
#include "StopRequest.h"
#include "UsageError.h"

namespace program {
namespace {

/// Sample times of a stretch of time; the largest count for one that is without end.
std::uint64_t samplesIn(double seconds, double rate) {
    constexpr double most = 9e18;
    const double samples = std::round(seconds * rate);
    return samples < most ? static_cast<std::uint64_t>(samples) : std::numeric_limits<std::uint64_t>::max();
}

/// Puts the rows of a piece behind those of a frame.
void append(const std::vector<double>& piece, std::size_t rows, std::vector<double>& frame,
            std::vector<double>& joined) {
    const auto before = frame.size() / rows;
    const auto added = piece.size() / rows;
    joined.resize(frame.size() + piece.size());
    auto out = joined.begin();
    for (std::size_t row = 0; row < rows; ++row) {
        out = std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(row * before), before, out);
        out = std::copy_n(piece.begin() + static_cast<std::ptrdiff_t>(row * added), added, out);
    }
    frame.swap(joined);
}

}  // namespace

ExcerptReader::ExcerptReader(std::unique_ptr<SignalReader> source, double seek, double duration, bool loop)
    : source_(std::move(source)), loop_(loop) {
    facts_ = source_->facts();
    first_ = samplesIn(seek, facts_.sampleRate);
    facts_.firstIndex += first_;
    facts_.firstSample = first_;
    points_ = samplesIn(duration, facts_.sampleRate);
    if (points_ == 0) {
        throw UsageError("--duration: " + formatQuantity(duration, "s") + " of " + facts_.name + " hold no sample");
    }
    if (const auto length = facts_.length) {
        if (first_ > 0 && first_ >= *length) {
            throw UsageError("--seek: " + facts_.name + " ends at " +
                             formatQuantity(static_cast<double>(*length) / facts_.sampleRate, "s"));
        }
        points_ = std::min(points_, *length - first_);
        facts_.length = points_;
    }
    if (loop_) {
        facts_.recorded.loop(first_, facts_.length.value_or(0));
        facts_.length.reset();
    }
    if (first_ > 0 && !source_->seek(first_)) {
        throw UsageError("--seek: " + facts_.name + " cannot be read from there");
    }
    facts_.centerFrequency = source_->facts().centerFrequency;
}

std::size_t ExcerptReader::readPiece(std::size_t points, std::vector<double>& frame) {
    const auto n = source_->read(static_cast<std::size_t>(std::min<std::uint64_t>(points, points_ - read_)), frame);
    read_ += n;
    for (const auto& text : source_->notes()) {
        note(text);
    }
    return n;
}

bool ExcerptReader::rewind() {
    if (!loop_ || read_ == 0 || StopRequest::requested()) {
        return false;
    }
    if (!source_->seek(first_)) {
        fault_ = "--loop: " + facts_.name + " was played once and cannot be read again";
        return false;
    }
    read_ = 0;
    return true;
}

std::size_t ExcerptReader::read(std::size_t points, std::vector<double>& frame) {
    const auto rows = static_cast<std::size_t>(facts_.rows());
    if (std::exchange(isAhead_, false)) {
        frame.swap(piece_);
    } else {
        readPiece(points, frame);
    }
    facts_.centerFrequency = source_->facts().centerFrequency;
    // A part that ends within the frame is followed by its beginning.
    while (loop_ && frame.size() < points * rows && !isAhead_) {
        if (readPiece(points - frame.size() / rows, piece_) == 0) {
            if (!rewind()) {
                break;
            }
            continue;
        }
        isAhead_ = !frame.empty() && source_->facts().centerFrequency != facts_.centerFrequency;
        if (!isAhead_) {
            facts_.centerFrequency = source_->facts().centerFrequency;
            append(piece_, rows, frame, joined_);
        }
    }
    if (frame.empty() && !fault_.empty()) {
        throw UsageError(fault_);
    }
    if (frame.empty() && first_ > 0 && !hasBegun_ && !StopRequest::requested()) {
        throw UsageError("--seek: " + facts_.name + " ends before " +
                         formatQuantity(static_cast<double>(first_) / facts_.sampleRate, "s"));
    }
    hasBegun_ = true;
    return frame.size() / rows;
}

bool ExcerptReader::seek(std::uint64_t sample) {
    read_ = std::min(sample, points_);
    isAhead_ = false;
    return source_->seek(first_ + read_);
}

}  // namespace program
