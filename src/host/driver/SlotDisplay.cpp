#include "SlotDisplay.h"

#include <algorithm>

namespace wavedeck::driver {

namespace {

constexpr std::size_t mostRowValues = 1U << 24U;  // of one channel, however long no update is asked for

}  // namespace

SlotDisplay::SlotDisplay(std::size_t numSignals) : Display(numSignals), slots_(numSignals) {}

void SlotDisplay::clear(Slots& slots) {
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
    const bool areLines = input.lineLength > 0;
    const bool tooLong = !slots.rows.empty() && slots.rows.front().size() + length > mostRowValues;
    if (!areLines || !slots.areLines || slots.frameSize != input.frameSize || tooLong) {
        clear(slots);
    }
    slots.areLines = areLines;
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
        clear(slots);  // rows are as long as each other
        throw;
    }
}

void SlotDisplay::setForm(std::size_t signal, std::size_t channels, bool) {
    Slots& slots = slots_[signal];
    if (slots.rows.size() != channels) {
        slots.rows.resize(channels);
        clear(slots);
    }
}

void SlotDisplay::dropOutputs() {
    for (Slots& slots : slots_) {
        clear(slots);
    }
}

void SlotDisplay::layOut() {
    for (std::size_t s = 0; s < slots_.size(); ++s) {
        const Slots& slots = slots_[s];
        data_[s] = slots.header;
        for (const std::vector<double>& row : slots.rows) {
            data_[s].insert(data_[s].end(), row.begin(), row.end());
        }
        numChannels_[s] = static_cast<int>(slots.rows.size());
        numPoints_[s] = static_cast<int>(slots.frameSize);
    }
}

void SlotDisplay::noteSeen() {
    for (Slots& slots : slots_) {
        if (slots.areLines) {
            clear(slots);
        }
    }
}

}  // namespace wavedeck::driver
