#pragma once

#include <array>
#include <cstddef>

namespace deckutil {

/// A trigger whose window has not been handed out yet.
struct PendingTrigger {
    double time = 0.0;     ///< s; the trigger point, or for a free run the end of the window
    bool freeRun = false;  ///< made because nothing triggered
};

/// The triggers that wait for their window, oldest first, in a fixed place; a full ring loses its oldest.
class TriggerEventRing {
public:
    static constexpr std::size_t capacity = 1024;

    bool empty() const { return count == 0; }
    std::size_t size() const { return count; }
    const PendingTrigger& front() const { return entries[first]; }
    const PendingTrigger& back() const { return entries[(first + count - 1) % capacity]; }
    void clear() { count = 0; }
    void popFront() {
        first = (first + 1) % capacity;
        --count;
    }
    void push(const PendingTrigger& trigger) {
        if (count == capacity) {
            popFront();
        }
        entries[(first + count) % capacity] = trigger;
        ++count;
    }

private:
    std::array<PendingTrigger, capacity> entries{};
    std::size_t first = 0;
    std::size_t count = 0;
};

}  // namespace deckutil
