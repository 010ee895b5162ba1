#include "HillClearer.h"

#include <algorithm>

namespace dspwavedecks {

std::size_t HillClearer::clear(std::vector<double>& psd, std::size_t index) {
    const auto at =
        std::partition_point(runs.begin(), runs.end(), [index](const Run& run) { return run.last < index; });
    const bool isInsideRun = at != runs.end() && at->first <= index;

    std::size_t first = isInsideRun ? at->first : index;
    auto leftmost = at;  // the runs from here on have been passed
    while (first >= 1 && psd[first - 1] <= psd[first]) {
        --first;
        if (leftmost != runs.begin() && std::prev(leftmost)->last == first) {
            --leftmost;
            first = leftmost->first;
        }
    }

    std::size_t last = isInsideRun ? at->last : index;
    auto pastRightmost = isInsideRun ? std::next(at) : at;
    while (last + 1 < psd.size() && psd[last] >= psd[last + 1]) {
        ++last;
        if (pastRightmost != runs.end() && pastRightmost->first == last) {
            last = pastRightmost->last;
            ++pastRightmost;
        }
    }

    const auto bin = [&psd](std::size_t k) { return psd.begin() + static_cast<std::ptrdiff_t>(k); };
    std::size_t next = first;
    for (auto run = leftmost; run != pastRightmost; ++run) {
        std::fill(bin(next), bin(run->first), 0.0);
        next = run->last + 1;
    }
    if (next <= last) {
        std::fill(bin(next), bin(last + 1), 0.0);
    }
    runs.insert(runs.erase(leftmost, pastRightmost), {first, last});
    return last - first + 1;
}

}  // namespace dspwavedecks
