#include "LatestDisplay.h"

#include <algorithm>

namespace wavedeck::driver {

namespace {

constexpr std::size_t mostLineValues = 1U << 24U;  // of one signal, however long no update is asked for

}  // namespace

LatestDisplay::LatestDisplay(std::size_t numSignals)
    : Display(numSignals), channels_(numSignals, 0), lines_(numSignals), isSpectrogram_(numSignals, false) {}

void LatestDisplay::take(std::size_t signal, const DisplayInput& input) {
    const std::size_t block = input.buffer.size() / (input.channels + 1);
    isSpectrogram_[signal] = input.lineLength > 0 && block > 0 && block % input.lineLength == 0;
    if (isSpectrogram_[signal]) {
        gather(lines_[signal], input, block);
    } else {
        lines_[signal].count = 0;
        data_[signal].swap(input.buffer);
    }
}

void LatestDisplay::gather(Lines& lines, const DisplayInput& input, std::size_t block) {
    const std::size_t length = input.lineLength;
    if (lines.length != length || lines.channels != input.channels) {
        lines.length = length;
        lines.channels = input.channels;
        lines.count = 0;
    }
    const std::size_t perLine = lines.channels * length;
    const double* source = input.buffer.data();
    lines.frequencies.assign(source, source + length);
    lines.values.resize(lines.count * perLine);
    for (std::size_t line = 0; line < block / length; ++line) {
        for (std::size_t channel = 1; channel <= lines.channels; ++channel) {
            const double* first = source + channel * block + line * length;
            lines.values.insert(lines.values.end(), first, first + length);
        }
        ++lines.count;
    }
    if (lines.values.size() > mostLineValues && lines.count > 1) {
        const std::size_t dropped = lines.count / 2;
        lines.values.erase(lines.values.begin(), lines.values.begin() + static_cast<std::ptrdiff_t>(dropped * perLine));
        lines.count -= dropped;
    }
}

void LatestDisplay::layOut(const Lines& lines, std::vector<double>& data) {
    const std::size_t block = lines.count * lines.length;
    data.assign(block * (lines.channels + 1), 0.0);
    if (block == 0) {
        return;
    }
    std::copy(lines.frequencies.begin(), lines.frequencies.end(), data.begin());
    const double* source = lines.values.data();
    for (std::size_t line = 0; line < lines.count; ++line) {
        for (std::size_t channel = 1; channel <= lines.channels; ++channel) {
            std::copy(source, source + lines.length, data.data() + channel * block + line * lines.length);
            source += lines.length;
        }
    }
}

void LatestDisplay::setForm(std::size_t signal, std::size_t channels, bool) {
    if (channels_[signal] != channels) {
        channels_[signal] = channels;
        data_[signal].clear();
        lines_[signal].count = 0;
    }
}

void LatestDisplay::dropOutputs() {
    for (std::size_t s = 0; s < data_.size(); ++s) {
        data_[s].clear();
        lines_[s].count = 0;
    }
}

void LatestDisplay::layOut() {
    for (std::size_t s = 0; s < data_.size(); ++s) {
        if (isSpectrogram_[s]) {
            layOut(lines_[s], data_[s]);
        }
        numChannels_[s] = static_cast<int>(channels_[s]);
        numPoints_[s] = static_cast<int>(data_[s].size() / (channels_[s] + 1));
    }
}

void LatestDisplay::noteSeen() {
    for (Lines& lines : lines_) {
        lines.count = 0;
    }
}

}  // namespace wavedeck::driver
