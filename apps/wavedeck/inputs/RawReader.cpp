#include "RawReader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace program {

RawReader::RawReader(std::unique_ptr<ByteSource> source, SampleFormat format, SignalFacts facts,
                     std::vector<RawRun> runs, std::uint64_t trailingBytes, std::vector<std::string> notes)
    : source_(std::move(source)), format_(std::move(format)), runs_(std::move(runs)) {
    facts_ = std::move(facts);
    notes_ = std::move(notes);
    facts_.centerFrequency = runs_.front().centerFrequency;
    facts_.datatype = format_.sigmfName();
    facts_.changesCenter = std::any_of(
        runs_.begin(), runs_.end(), [&](const RawRun& run) { return run.centerFrequency != facts_.centerFrequency; });
    bytesPerTime_ = format_.bytes * static_cast<std::size_t>(facts_.rows());
    std::uint64_t headers = 0;
    for (const auto& run : runs_) {
        headers += run.headerBytes;
        runBytes_.push_back(headers + run.firstSample * bytesPerTime_);
    }
    if (const auto size = source_->size()) {
        const auto end = *size - std::min(trailingBytes, *size);
        std::uint64_t samples = 0;
        for (std::size_t run = 0; run < runs_.size() && end > runBytes_[run]; ++run) {
            const auto bytes = end - runBytes_[run];
            const auto there = runs_[run].firstSample + bytes / bytesPerTime_;
            samples = std::min(there, endOf(run));
            rest_ = there < endOf(run) ? bytes % bytesPerTime_ : 0;
        }
        facts_.length = samples;
        if (runs_.back().firstSample > samples) {
            note(facts_.name + ": the samples are cut short: a capture begins at sample " +
                 std::to_string(runs_.back().firstSample) + ", and " + std::to_string(samples) + " are there");
        }
    }
    if (runBytes_.front() > 0) {
        source_->seek(runBytes_.front());
    }
}

std::uint64_t RawReader::endOf(std::size_t run) const {
    return run + 1 < runs_.size() ? runs_[run + 1].firstSample : std::numeric_limits<std::uint64_t>::max();
}

void RawReader::enterRun() {
    while (next_ >= endOf(run_)) {
        ++run_;
        source_->seek(runBytes_[run_] + (next_ - runs_[run_].firstSample) * bytesPerTime_);
    }
}

std::size_t RawReader::readPiece(std::size_t points, std::size_t held) {
    const auto rows = static_cast<std::size_t>(facts_.rows());
    auto most = std::min<std::uint64_t>(points, endOf(run_) - next_);
    if (facts_.length) {
        most = std::min(most, *facts_.length - std::min(next_, *facts_.length));
    }
    const auto wanted = static_cast<std::size_t>(most) * bytesPerTime_;
    if (stored_.size() < wanted) {
        stored_.resize(wanted);
    }
    const auto got = source_->read(stored_.data(), wanted);
    const auto n = got / bytesPerTime_;
    if (source_->ended() && !facts_.length) {
        rest_ = got % bytesPerTime_;
    }
    if (interleaved_.size() < (held + n) * rows) {
        interleaved_.resize((held + n) * rows);
    }
    format_.decode(stored_.data(), n * rows, format_.zero, runs_[run_].factor / format_.fullScale,
                   interleaved_.data() + held * rows);
    next_ += n;
    return n;
}

std::size_t RawReader::read(std::size_t points, std::vector<double>& frame) {
    std::size_t n = 0;
    enterRun();
    facts_.centerFrequency = runs_[run_].centerFrequency;
    while (n < points) {
        const auto got = readPiece(points - n, n);
        n += got;
        if (got == 0 || n == points || next_ < endOf(run_)) {
            break;
        }
        enterRun();
        if (runs_[run_].centerFrequency != facts_.centerFrequency) {
            break;
        }
    }
    separate(interleaved_.data(), n, facts_, frame);
    const bool ended = n < points && (source_->ended() || (facts_.length && next_ >= *facts_.length));
    if (ended && rest_ > 0) {
        note(facts_.name + ": the last " + (rest_ == 1 ? "byte is" : std::to_string(rest_) + " bytes are") +
             " part of a sample of " + std::to_string(bytesPerTime_) + " bytes and left out");
    }
    return n;
}

bool RawReader::seek(std::uint64_t sample) {
    if (facts_.length) {
        sample = std::min(sample, *facts_.length);
    }
    std::size_t run = 0;
    while (sample >= endOf(run)) {
        ++run;
    }
    // A position that no file reaches is as good as its end.
    const auto times = sample - runs_[run].firstSample;
    constexpr std::uint64_t farthest = std::numeric_limits<std::int64_t>::max();
    const auto bytes = times > (farthest - runBytes_[run]) / bytesPerTime_ ? farthest : times * bytesPerTime_;
    if (!source_->seek(std::min(farthest, runBytes_[run] + bytes))) {
        return false;
    }
    next_ = sample;
    run_ = run;
    facts_.centerFrequency = runs_[run].centerFrequency;
    return true;
}

void RawReader::setCenterFrequency(double frequency) {
    for (auto& run : runs_) {
        run.centerFrequency = frequency;
    }
    facts_.centerFrequency = frequency;
}

}  // namespace program
