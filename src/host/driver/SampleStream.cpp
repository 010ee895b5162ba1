#include "SampleStream.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "DriverError.h"

namespace wavedeck::driver {

namespace {

constexpr std::size_t shortestHistory = 15361;  // points: what a time message shows at most
constexpr std::size_t longestHistory = 1U << 24U;

std::size_t countOf(int value) {
    return static_cast<std::size_t>(std::max(value, 0));
}

std::string place(std::size_t signal) {
    return "signal " + std::to_string(signal);
}

/// Points that a span covers, bounded so that an absurd span does not ask for absurd memory.
std::size_t pointsOf(double span, double sampleTime) {
    const double points = sampleTime > 0.0 ? std::ceil(span / sampleTime) : 0.0;
    return points > 0.0 ? static_cast<std::size_t>(std::min(points, static_cast<double>(longestHistory))) : 0;
}

}  // namespace

SampleStream::SampleStream(const ClientFacts& facts, const WaveDeckClientInfo& info, double historySpan)
    : facts_(facts),
      info_(info),
      historySpan_(historySpan),
      storesTimes_(hasLeadingBlock(facts.kind)),
      storesFrameTimes_(isBlockflow(facts.kind) && !storesTimes_) {
    for (const SignalFacts& signal : facts.signals) {
        numChannels_.push_back(signal.numChannels);
        frameSizes_.push_back(signal.frameSize);
    }
    const std::size_t count = facts.signals.size();
    signals_.resize(count);
    history_.resize(count);
    frameTimes_.resize(count);
    heads_.resize(count);
    restart();
}

void SampleStream::restart() {
    nextIndex_.assign(signals_.size(), 0);
    sinceOutput_.assign(signals_.size(), 0);
    time_ = facts_.startTime;
    for (std::size_t s = 0; s < signals_.size(); ++s) {
        configureHistory(s);
    }
}

std::size_t SampleStream::rowsStored(std::size_t signal) const {
    return countOf(numChannels_[signal]) + (storesTimes_ ? 1 : 0);
}

void SampleStream::configureHistory(std::size_t signal) {
    std::size_t points = countOf(frameSizes_[signal]);
    if (facts_.kind != ChainKind::Frame && facts_.kind != ChainKind::Response) {
        const double sampleTime = info_.getSampleTime(static_cast<int>(signal));
        const std::size_t update = pointsOf(1.0 / facts_.updatesPerSecond, sampleTime);
        points = std::max({shortestHistory, pointsOf(historySpan_, sampleTime) + points, update + points});
    }
    if (history_[signal].rows() == rowsStored(signal) &&
        history_[signal].capacity() == std::max<std::size_t>(points, 1)) {
        history_[signal].clear();
    } else {
        history_[signal].configure(rowsStored(signal), points);
    }
    frameTimes_[signal].configure(1, storesFrameTimes_ ? framesStored(signal) : 1);
}

std::size_t SampleStream::framesStored(std::size_t signal) const {
    return history_[signal].capacity() / std::max<std::size_t>(countOf(frameSizes_[signal]), 1) + 1;
}

void SampleStream::setHistorySpan(double seconds) {
    historySpan_ = seconds;
    for (std::size_t s = 0; s < signals_.size(); ++s) {
        history_[s].grow(pointsOf(seconds, info_.getSampleTime(static_cast<int>(s))) + countOf(frameSizes_[s]));
    }
}

void SampleStream::resize(const std::vector<int>& numChannels, const std::vector<int>& frameSizes) {
    for (std::size_t s = 0; s < signals_.size(); ++s) {
        // A head is formed of whole simulation frames, which must all have one size.
        const bool otherFrames = isBlockflow(facts_.kind) && frameSizes_[s] != frameSizes[s];
        const bool changed = otherFrames || numChannels_[s] != numChannels[s];
        const int channelsBefore = std::exchange(numChannels_[s], numChannels[s]);
        const int frameSizeBefore = std::exchange(frameSizes_[s], frameSizes[s]);
        if (!changed) {
            continue;
        }
        try {
            configureHistory(s);
        } catch (...) {
            numChannels_[s] = channelsBefore;  // those for which the history is laid out
            frameSizes_[s] = frameSizeBefore;
            throw;
        }
    }
}

double SampleStream::timeOf(std::size_t signal, std::uint64_t index) const {
    return facts_.startTime + static_cast<double>(index) * info_.getSampleTime(static_cast<int>(signal));
}

void SampleStream::rewind(double time) {
    time_ = facts_.startTime;
    for (std::size_t s = 0; s < signals_.size(); ++s) {
        const std::uint64_t reached = nextIndex_[s];
        const double sampleTime = info_.getSampleTime(static_cast<int>(s));
        const double guess = sampleTime > 0.0 ? (time - facts_.startTime) / sampleTime : 0.0;
        // The quotient may be off by rounding: the times themselves decide.
        std::uint64_t index =
            guess >= 1.0 ? std::min(reached, static_cast<std::uint64_t>(std::min(guess, 1e18)) - 1) : 0;
        while (index < reached && timeOf(s, index) <= time) {
            ++index;
        }
        nextIndex_[s] = index;
        if (facts_.kind == ChainKind::Frame) {
            history_[s].clear();  // its times are a frame's own
        } else if (storesTimes_) {
            history_[s].dropNewerThan(time);
        } else if (storesFrameTimes_) {
            history_[s].dropNewest(frameTimes_[s].dropNewerThan(time) * countOf(frameSizes_[s]));
        } else {
            history_[s].dropNewest(static_cast<std::size_t>(reached - index));
        }
        time_ = std::max(time_, timeOf(s, index));
    }
    if (isBlockflow(facts_.kind)) {
        time_ = std::max(time, facts_.startTime);  // a simulation brings its own times
    }
}

void SampleStream::begin(std::size_t signal, std::span<const double> raw) {
    SignalFrame& frame = signals_[signal];
    frame.raw = raw;
    frame.current = nullptr;
    frame.hasNews = true;
    frame.newestLineMade = false;
}

void SampleStream::fillTimes(std::size_t signal, std::uint64_t first, std::size_t n, double* times) const {
    const double sampleTime = info_.getSampleTime(static_cast<int>(signal));
    // The frame of a frame display stands against its own samples, not against the stream's time.
    const bool ownSamples = facts_.kind == ChainKind::Frame;
    const double start = ownSamples ? 0.0 : facts_.startTime;
    const double index = ownSamples ? 0.0 : static_cast<double>(first);
    for (std::size_t i = 0; i < n; ++i) {
        times[i] = start + (index + static_cast<double>(i)) * sampleTime;
    }
}

void SampleStream::formBlocks(std::size_t signal, std::span<const double> raw, std::uint64_t first) {
    const std::size_t n = raw.size() / std::max<std::size_t>(countOf(numChannels_[signal]), 1);
    std::vector<double>& blocks = signals_[signal].blocks;
    blocks.resize(n + raw.size());
    fillTimes(signal, first, n, blocks.data());
    std::copy(raw.begin(), raw.end(), blocks.begin() + static_cast<std::ptrdiff_t>(n));
}

void SampleStream::checkFrame(std::size_t signal, std::span<const double> raw) const {
    const std::size_t channels = countOf(numChannels_[signal]);
    if (channels == 0 ? !raw.empty() : raw.size() % channels != 0) {
        throw DriverError("the frame of " + place(signal) + " holds " + std::to_string(raw.size()) +
                          " values, which is no whole number of points for " + std::to_string(channels) + " channels");
    }
}

void SampleStream::take(std::size_t signal, std::span<const double> raw, FrameSource source) {
    const std::size_t channels = countOf(numChannels_[signal]);
    const std::size_t n = channels == 0 ? 0 : raw.size() / channels;
    const std::uint64_t first = nextIndex_[signal];
    SignalFrame& frame = signals_[signal];
    begin(signal, raw);
    if (hasLeadingBlock(facts_.kind)) {
        formBlocks(signal, raw, first);
        frame.current = &frame.blocks;
    }
    if (source == FrameSource::Stream) {
        store(signal, storesTimes_ ? frame.blocks.data() : raw.data(), n);
        nextIndex_[signal] = first + n;
        time_ = std::max(time_, timeOf(signal, nextIndex_[signal]));
    }
}

void SampleStream::takeAsIs(std::size_t signal, std::span<const double> buffer, FrameSource source) {
    SignalFrame& frame = signals_[signal];
    begin(signal, buffer);
    frame.blocks.assign(buffer.begin(), buffer.end());
    frame.current = &frame.blocks;
    if (source == FrameSource::Stream) {
        nextIndex_[signal] += buffer.size() / (countOf(numChannels_[signal]) + 1);
        time_ = std::max(time_, timeOf(signal, nextIndex_[signal]));
    }
}

std::size_t SampleStream::valuesPerTime(std::size_t signal) const {
    return 1 + countOf(numChannels_[signal]) * countOf(frameSizes_[signal]);
}

void SampleStream::checkHead(std::size_t signal, std::span<const double> head) const {
    const std::size_t perTime = valuesPerTime(signal);
    if (head.size() % perTime != 0) {
        throw DriverError("the simulation frame of " + place(signal) + " holds " + std::to_string(head.size()) +
                          " values, which is no multiple of " + std::to_string(perTime));
    }
}

void SampleStream::takeHead(std::size_t signal, std::span<const double> head, FrameSource source) {
    begin(signal, head);
    SignalFrame& frame = signals_[signal];
    if (!storesFrameTimes_) {
        expandHead(signal, head);
        frame.current = &frame.blocks;
    }
    const std::size_t frames = head.size() / valuesPerTime(signal);
    const std::size_t n = frames * countOf(frameSizes_[signal]);
    if (source == FrameSource::Stream && n > 0) {
        if (storesFrameTimes_) {
            storeHead(signal, head, frames);
        } else {
            store(signal, frame.blocks.data(), n);
        }
        nextIndex_[signal] += n;
        if (!facts_.signals[signal].isInputPort) {
            const double sampleTime = info_.getSampleTime(static_cast<int>(signal));
            const TimeGrid grid = gridOf(signal, head[frames - 1]);
            time_ = grid.start + (grid.first + frameSizes_[signal] - 1) * sampleTime + sampleTime;
        }
    }
}

/// A frame on the signal's own grid gets the times that a stream would have, to the last bit.
SampleStream::TimeGrid SampleStream::gridOf(std::size_t signal, double frameTime) const {
    const double sampleTime = info_.getSampleTime(static_cast<int>(signal));
    const double index = sampleTime > 0.0 ? std::round((frameTime - facts_.startTime) / sampleTime) : 0.0;
    const bool isOnGrid = std::fabs(facts_.startTime + index * sampleTime - frameTime) < 1e-6 * sampleTime;
    return isOnGrid ? TimeGrid{facts_.startTime, index} : TimeGrid{frameTime, 0.0};
}

void SampleStream::expandHead(std::size_t signal, std::span<const double> head) {
    const std::size_t channels = countOf(numChannels_[signal]);
    const std::size_t size = countOf(frameSizes_[signal]);
    const std::size_t frames = head.size() / (1 + channels * size);
    const double sampleTime = info_.getSampleTime(static_cast<int>(signal));
    std::vector<double>& blocks = signals_[signal].blocks;
    blocks.resize((channels + 1) * frames * size);
    double* times = blocks.data();
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const TimeGrid grid = gridOf(signal, head[frame]);
        for (std::size_t i = 0; i < size; ++i) {
            times[frame * size + i] = grid.start + (grid.first + static_cast<double>(i)) * sampleTime;
        }
    }
    std::copy(head.begin() + static_cast<std::ptrdiff_t>(frames), head.end(), times + frames * size);
}

/// Keeps a frame as it is: its times cost nothing beside its samples. A stream that has gone back overwrites what lies
/// ahead of it.
void SampleStream::storeHead(std::size_t signal, std::span<const double> head, std::size_t frames) {
    const std::size_t size = countOf(frameSizes_[signal]);
    SampleHistory& times = frameTimes_[signal];
    history_[signal].dropNewest(times.dropFrom(head[0]) * size);
    store(signal, head.data() + frames, frames * size);
    times.grow(framesStored(signal));
    times.append(head.data(), frames);
}

void SampleStream::store(std::size_t signal, const double* rows, std::size_t n) {
    SampleHistory& history = history_[signal];
    const bool keepsFrame = facts_.kind == ChainKind::Frame || facts_.kind == ChainKind::Response;
    if (keepsFrame) {
        history.clear();
        history.grow(n);
    }
    // A replay shall give one output at least: keep what has not led to one yet.
    sinceOutput_[signal] += n;
    if (sinceOutput_[signal] > history.capacity() && history.capacity() < longestHistory) {
        history.grow(std::min(longestHistory, 2 * static_cast<std::size_t>(sinceOutput_[signal])));
    }
    if (storesTimes_) {
        history.appendTimed(rows, n);
    } else {
        history.append(rows, n);
    }
}

void SampleStream::takeStored(std::size_t signal) {
    SampleHistory& history = history_[signal];
    SignalFrame& frame = signals_[signal];
    const std::size_t n = history.size();
    history.layOut(frame.blocks);
    if (!isBlockflow(facts_.kind)) {
        begin(signal, std::span<const double>(frame.blocks).subspan(storesTimes_ ? n : 0));
        frame.current = hasLeadingBlock(facts_.kind) ? &frame.blocks : nullptr;
        return;
    }
    const std::size_t size = countOf(frameSizes_[signal]);
    const SampleHistory& times = frameTimes_[signal];
    std::size_t frames = size == 0 ? 0 : n / size;
    if (storesFrameTimes_) {
        frames = std::min(frames, times.size());  // fewer where there was no memory for a time
    }
    const std::size_t skipped = n - frames * size;
    std::vector<double>& head = heads_[signal];
    head.resize(frames + countOf(numChannels_[signal]) * frames * size);
    double* target = head.data();
    for (std::size_t k = 0; k < frames; ++k) {
        *target++ = storesFrameTimes_ ? times.at(0, times.size() - frames + k) : frame.blocks[skipped + k * size];
    }
    for (std::size_t row = storesFrameTimes_ ? 0 : 1; row < history.rows(); ++row) {
        const double* source = frame.blocks.data() + row * n;
        target = std::copy(source + skipped, source + n, target);
    }
    takeHead(signal, head, FrameSource::Replay);
}

}  // namespace wavedeck::driver
