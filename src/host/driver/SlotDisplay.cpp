#include "SlotDisplay.h"

#include <algorithm>

namespace wavedeck::driver {

namespace {

constexpr std::size_t mostRowValues = 1U << 24U;  // of one channel, however long no update is asked for

}  // namespace

SlotDisplay::SlotDisplay(std::size_t numSignals) : Display(numSignals), slots_(numSignals) {}

void SlotDisplay::clear(std::size_t signal) {
    data_[signal].clear();
    Slots& slots = slots_[signal];
    slots.header.clear();
    for (std::vector<double>& row : slots.rows) {
        row.clear();
    }
}

void SlotDisplay::take(std::size_t signal, const DisplayInput& input) {
    Slots& slots = slots_[signal];
    const std::size_t perSlot = 1 + slots.rows.size() * input.frameSize;
    const std::size_t count = input.buffer.size() / perSlot;
    if (input.channels != slots.rows.size() || count == 0) {
        return;
    }
    const std::size_t length = count * input.frameSize;
    if (input.lineLength == 0) {
        clear(signal);
        slots.areLines = false;
        slots.frameSize = input.frameSize;
        data_[signal].swap(input.buffer);  // an output is laid out as it is
        data_[signal].resize(count * perSlot);
        return;
    }
    const bool tooLong = !slots.rows.empty() && slots.rows.front().size() + length > mostRowValues;
    if (!slots.areLines || slots.frameSize != input.frameSize || tooLong) {
        clear(signal);
    }
    slots.areLines = true;
    slots.frameSize = input.frameSize;
    const double* source = input.buffer.data();
    try {
        slots.header.insert(slots.header.end(), source, source + count);
        source += count;
        for (std::vector<double>& row : slots.rows) {
            row.insert(row.end(), source, source + length);
            source += length;
        }
    } catch (...) {
        clear(signal);  // rows are as long as each other
        throw;
    }
}

void SlotDisplay::setForm(std::size_t signal, std::size_t channels, bool) {
    Slots& slots = slots_[signal];
    if (slots.rows.size() != channels) {
        slots.rows.resize(channels);
        clear(signal);
    }
}

void SlotDisplay::dropOutputs() {
    for (std::size_t s = 0; s < slots_.size(); ++s) {
        clear(s);
    }
}

void SlotDisplay::layOut() {
    for (std::size_t s = 0; s < slots_.size(); ++s) {
        const Slots& slots = slots_[s];
        if (slots.areLines) {
            data_[s] = slots.header;
            for (const std::vector<double>& row : slots.rows) {
                data_[s].insert(data_[s].end(), row.begin(), row.end());
            }
        }
        numChannels_[s] = static_cast<int>(slots.rows.size());
        numPoints_[s] = static_cast<int>(slots.frameSize);
    }
}

void SlotDisplay::noteSeen() {
    for (std::size_t s = 0; s < slots_.size(); ++s) {
        if (slots_[s].areLines) {
            clear(s);
        }
    }
}

}  // namespace wavedeck::driver
